#pragma once

#include "talm_flow/export.h"
#include "talm_flow/host/common_functions.h"
#include "talm_flow/host/file_system.h"
#include "talm_flow/host/form_service.h"
#include "talm_flow/host/record_service.h"
#include "talm_flow/host/table_service.h"
#include "talm_flow/host/text_services.h"
#include "talm_flow/host/user_list_service.h"

namespace talm_flow::host {

/// Everything that the component asks of its host, apart from the connection. The host owns the objects behind the
/// references; they outlive the objects of the four public classes that were created with them.
///
/// `ReferenceHost` (talm_flow/host/reference_host.h) offers a complete set over the same database.
struct TALM_FLOW_API Services {
  CommonFunctions& common;      ///< literals, lists and safe texts for pages
  RecordService& records;       ///< form records
  TableService& tables;         ///< form tables
  UserListService& user_lists;  ///< people and groups
  FormService& forms;           ///< input units
  DateService& dates;           ///< the host's date columns
  UrlService& urls;             ///< texts in addresses
  Clock& clock;                 ///< the current moment
  FileSystem& files;            ///< exported definitions
};

}  // namespace talm_flow::host
