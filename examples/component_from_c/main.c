/* Drives the component server from plain C: registers it, creates its classes by their names, runs a flow on a file.
 *
 *   component_from_c LIBRARY DATABASE
 *
 * LIBRARY is libtalm_flow.so; it is registered for this user (in $XDG_DATA_HOME), and unregistered at the end. DATABASE
 * is a new SQLite file. */

#include <dlfcn.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <talm_flow/component.h>

#define COUNT(array) ((uint32_t)(sizeof(array) / sizeof(array)[0]))

static const char kDefinition[] =
    "//\r\nVer:Flow_V600\r\nFlowBegin\r\nFlowRemark:Adds two numbers\r\nStepBegin\r\nFlowNo:1\r\nParentNo:0\r\n"
    "Serial:1\r\nRemark:Add\r\nCommand:C_39\r\nParameterBegin\r\nC_39_1:Global_sum\r\nC_39_2:1+2*3\r\n"
    "ParameterEnd\r\nFlowEnd\r\n";

/* ---- Values -------------------------------------------------------------------------------------------------------*/

static TalmVariant whole(int32_t number) {
  TalmVariant variant = {.type = kTalmInt32};
  variant.as.int32 = number;
  return variant;
}

static TalmVariant text(const char* utf8) {
  TalmVariant variant = {.type = kTalmTextType};
  variant.as.text = TalmTextFromUtf8(utf8);
  return variant;
}

/* Lends the object: the variant is not to be cleared. */
static TalmVariant lent(TalmDispatch* object) {
  TalmVariant variant = {.type = kTalmObject};
  variant.as.object = object;
  return variant;
}

static TalmVariant by_reference(TalmVariant* variable) {
  TalmVariant variant = {.type = kTalmVariant | kTalmByReference};
  variant.as.reference = variable;
  return variant;
}

static void print_text(TalmText value) {
  char utf8[400];
  (void)TalmTextToUtf8(value, utf8, sizeof utf8);
  fputs(utf8, stdout);
}

static void print(const char* title, const TalmVariant* variant) {
  printf("%s: ", title);
  switch (variant->type) {
    case kTalmNull: fputs("Null", stdout); break;
    case kTalmInt32: printf("%d", variant->as.int32); break;
    case kTalmBoolean: fputs(variant->as.boolean ? "True" : "False", stdout); break;
    case kTalmTextType: print_text(variant->as.text); break;
    default: printf("a value of type %d", variant->type); break;
  }
  putchar('\n');
}

/* ---- Calls --------------------------------------------------------------------------------------------------------*/

static void stop(const char* what, TalmResult code, TalmText message) {
  printf("%s: code 0x%08X ", what, (unsigned)code);
  print_text(message);
  putchar('\n');
  exit(1);
}

/* Takes what `text` allocated; clears the result unless somebody wants it. */
static TalmResult call(TalmDispatch* object, const char16_t* member, TalmVariant* arguments, uint32_t count,
                       TalmVariant* result, TalmException* exception) {
  TalmResult code = TalmCall(object, member, kTalmMethod | kTalmGet, arguments, count, result, exception);
  for (uint32_t i = 0; i < count; ++i) {
    if (arguments[i].type == kTalmTextType) TalmClearVariant(&arguments[i]);
  }
  return code;
}

static TalmVariant must(TalmDispatch* object, const char16_t* member, TalmVariant* arguments, uint32_t count) {
  TalmVariant result = {0};
  TalmException exception = {0};
  TalmResult code = call(object, member, arguments, count, &result, &exception);
  if (TALM_FAILED(code)) stop("a call failed", code, exception.description);
  return result;
}

static TalmDispatch* create(const char16_t* class_name) {
  TalmDispatch* object = NULL;
  TalmText message = NULL;
  TalmResult code = TalmCreateObject(class_name, &object, &message);
  if (TALM_FAILED(code)) stop("no object", code, message);
  return object;
}

static void release(TalmDispatch* object) { object->table->Release(object); }

/* ---- The library --------------------------------------------------------------------------------------------------*/

typedef TalmResult (*EntryPoint)(void);

static EntryPoint entry_point(void* library, const char* name) {
  EntryPoint entry;
  void* found = dlsym(library, name);
  if (found == NULL) {
    puts(dlerror());
    exit(1);
  }
  memcpy(&entry, &found, sizeof entry);
  return entry;
}

/* ---- The example --------------------------------------------------------------------------------------------------*/

static TalmDispatch* open_database(const char* path) {
  char url[1024];
  TalmDispatch* connection = create(u"TALM_Flow.Connection");
  snprintf(url, sizeof url, "sqlite:%s", path);
  TalmVariant arguments[] = {text(url)};
  must(connection, u"Open", arguments, COUNT(arguments));
  must(connection, u"CreateTables", NULL, 0);
  return connection;
}

static void run_flow(TalmDispatch* connection, TalmDispatch* name, TalmDispatch* command) {
  TalmVariant add[] = {lent(connection), text("相加"), text("me"), text(kDefinition)};
  TalmVariant result = must(name, u"FlowAdd", add, COUNT(add));
  print("FlowAdd", &result);
  TalmVariant execute[] = {lent(connection), whole(1), whole(0), whole(0),
                           text("me"),       text("127.0.0.1"), whole(0), whole(0)};
  must(command, u"FlowExecute", execute, COUNT(execute));
  TalmVariant get[] = {lent(connection), whole(0), whole(0), text("Global_sum"), whole(0), whole(0)};
  result = must(command, u"GetVariableValue", get, COUNT(get));
  print("Global_sum", &result);
  TalmClearVariant(&result);
}

/* An operation that writes its results into the caller's variables. */
static void read_flow(TalmDispatch* connection, TalmDispatch* name) {
  TalmVariant flow_name = {0};
  TalmVariant creater = {0};
  TalmVariant remark = {0};
  TalmVariant arguments[] = {lent(connection), whole(1), by_reference(&flow_name), by_reference(&creater),
                             by_reference(&remark)};
  TalmVariant found = must(name, u"GetAll", arguments, COUNT(arguments));
  print("GetAll", &found);
  print("FlowName", &flow_name);
  print("Creater", &creater);
  print("Remark", &remark);
  TalmClearVariant(&flow_name);
  TalmClearVariant(&creater);
  TalmClearVariant(&remark);
}

static void read_rows(TalmDispatch* connection) {
  TalmVariant query[] = {text("Select VariableName,VariableValue From WorkFlowVariable")};
  TalmVariant opened = must(connection, u"Execute", query, COUNT(query));
  TalmDispatch* rows = opened.as.object;
  for (;;) {
    TalmVariant at_end = must(rows, u"EOF", NULL, 0);
    if (at_end.as.boolean) break;
    TalmVariant key[] = {text("VariableValue")};
    TalmVariant value = must(rows, u"Field", key, COUNT(key));
    print("VariableValue", &value);
    TalmClearVariant(&value);
    must(rows, u"MoveNext", NULL, 0);
  }
  must(rows, u"Close", NULL, 0);
  TalmClearVariant(&opened);
}

static void show_an_error(TalmDispatch* connection, TalmDispatch* name) {
  TalmException exception = {0};
  TalmVariant arguments[] = {lent(connection), text("no number")};
  TalmResult code = call(name, u"GetFlowName", arguments, COUNT(arguments), NULL, &exception);
  const char* kind = code == TALM_EXCEPTION ? TalmErrorKind(exception.result) : NULL;
  printf("%s from ", kind == NULL ? "no error" : kind);
  print_text(exception.source);
  fputs(": ", stdout);
  print_text(exception.description);
  putchar('\n');
  TalmClearException(&exception);
}

int main(int count, char** words) {
  if (count != 3) {
    puts("usage: component_from_c LIBRARY DATABASE");
    return 2;
  }
  void* library = dlopen(words[1], RTLD_NOW | RTLD_LOCAL);
  if (library == NULL) {
    puts(dlerror());
    return 1;
  }
  TalmResult registered = entry_point(library, "DllRegisterServer")();
  if (TALM_FAILED(registered)) stop("not registered", registered, NULL);

  TalmDispatch* connection = open_database(words[2]);
  TalmDispatch* name = create(u"TALM_Flow.Name");
  TalmDispatch* command = create(u"TALM_Flow.Command");
  run_flow(connection, name, command);
  read_flow(connection, name);
  read_rows(connection);
  show_an_error(connection, name);
  release(command);
  release(name);
  release(connection);

  printf("may be unloaded: %s\n", entry_point(library, "DllCanUnloadNow")() == TALM_OK ? "yes" : "no");
  return entry_point(library, "DllUnregisterServer")() == TALM_OK ? 0 : 1;
}
