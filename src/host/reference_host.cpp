#include "talm_flow/host/reference_host.h"

#include "host/common_functions.h"
#include "host/file_system.h"
#include "host/form_service.h"
#include "host/record_service.h"
#include "host/table_service.h"
#include "host/text_services.h"
#include "host/user_list_service.h"

namespace talm_flow::host {

struct ReferenceHost::Parts {
  explicit Parts(const ReferenceHostOptions& options) : clock(options.fixed_clock), files(options.text_encoding) {}

  ReferenceCommonFunctions common;
  ReferenceDateService dates;
  ReferenceUrlService urls;
  ReferenceClock clock;
  ReferenceTableService tables{common, dates, clock};
  ReferenceRecordService records{common, tables};
  ReferenceUserListService user_lists{common};
  ReferenceFormService forms{common};
  ReferenceFileSystem files;
};

ReferenceHost::ReferenceHost(ReferenceHostOptions options) : parts_(std::make_unique<Parts>(options)) {}

ReferenceHost::~ReferenceHost() = default;

Services ReferenceHost::services() {
  return {.common = parts_->common,
          .records = parts_->records,
          .tables = parts_->tables,
          .user_lists = parts_->user_lists,
          .forms = parts_->forms,
          .dates = parts_->dates,
          .urls = parts_->urls,
          .clock = parts_->clock,
          .files = parts_->files};
}

}  // namespace talm_flow::host
