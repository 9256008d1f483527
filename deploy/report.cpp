#include "deploy/report.h"

#include <cstdarg>
#include <cstdio>

#include "dd/report.h"
#include "deploy/modes.h"

static void raise_flags(tav_deploy_raises raises) {
  using enum tav_deploy_raises;
  if (raises == CONFLICT || raises == CONFLICT_AND_ERROR) tav_deploy_raise_conflict();
  if (raises == ERROR || raises == CONFLICT_AND_ERROR) tav_deploy_raise_error();
}

static void print_and_log(dd_site site, const char* log_text, const char* format, va_list list) {
  dd_vprint_error(format, list);
  if (log_text != nullptr) dd_log(site, log_text);
}

void tav_deploy_report(dd_site site, tav_deploy_raises raises, const char* log_text,
                       const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  print_and_log(site, log_text, format, arguments);
  va_end(arguments);
  raise_flags(raises);
}

int tav_deploy_fail(dd_site site, const char* log_text, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  print_and_log(site, log_text, format, arguments);
  va_end(arguments);
  return -1;
}

int tav_deploy_fail_as(dd_site site, const char* log_text, const char* text) {
  dd_print_error_text(text);
  dd_log(site, log_text);
  return -1;
}

static const char* hint(int32_t location) {
  switch (location) {
    case TAV_ERRLOC_DM:
      return "\n\nPlease check the DM tavlog file for more information.\n\n";
    case TAV_ERRLOC_CONNECTION:
    case TAV_ERRLOC_CM:
      return "\n\nPlease check the CM tavlog file for more information.\n\n";
    default:
      return "\n\nPlease check the application tavlog file for more information.\n\n";
  }
}

void tav_deploy_display_ebuf(const tav_ebuf* ebuf) {
  char text[2048];
  tav_snprintf(text, sizeof text,
               "Error: [location=<%s:%d>\nclass=<%s:%d>\nerrno=<%s:%d>\nfield num=<%s:%d,%d>\n"
               "recid=<%d>\nreserved=<%d>]",
               tav_errloc_to_str(ebuf->location), ebuf->location,
               tav_errclass_to_str(ebuf->err_class), ebuf->err_class,
               tav_taverr_to_str(ebuf->err_code), ebuf->err_code, tav_name_of_field(ebuf->field),
               DD_FIELD_ID_TYPE(ebuf->field), DD_FIELD_ID_NUMBER(ebuf->field), ebuf->rec_id,
               ebuf->reserved);
  dd_print_error_text(text);
  dd_print_error_text(hint(ebuf->location));
}

int tav_deploy_call_failed(dd_site site, const tav_ebuf& ebuf, const char* log_text) {
  dd_print_error("Error: Internal Error\n");
  tav_deploy_display_ebuf(&ebuf);
  dd_log(site, log_text, ebuf);
  return -1;
}

void tav_deploy_print_outcome(const char* line) {
  std::fputs(line, stdout);
  std::fflush(stdout);
}
