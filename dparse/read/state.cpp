#include "dparse/read/state.h"

#include <cstdarg>
#include <cstring>

#include "dd/report.h"
#include "dparse/read/reader.h"

char dparse_fname[DPARSE_TEXT_SIZE];
int dparse_lineno = 1;
char dparse_errmsg[DPARSE_TEXT_SIZE];
char dparse_emsg_temp[DPARSE_MESSAGE_SIZE];

// A long name leaves the byte before the terminator as it was: deliberate.
void dparseSetFname(const char* name) {
  if (name == nullptr) name = "";
  const size_t length = strnlen(name, DPARSE_TEXT_SIZE - 1);
  if (length < DPARSE_TEXT_SIZE - 1) {
    std::memcpy(dparse_fname, name, length + 1);
    return;
  }
  std::memcpy(dparse_fname, name, DPARSE_TEXT_SIZE - 2);
  dparse_fname[DPARSE_TEXT_SIZE - 1] = '\0';
}

const char* dparseGetFname() {
  return dparse_fname;
}

void dparseSetErrMsg(const char* message) {
  if (message != nullptr && dparse_errmsg[0] == '\0')
    tav_strlcpy(dparse_errmsg, message, sizeof dparse_errmsg);
}

const char* dparseGetErrMsg() {
  return dparse_errmsg;
}

int dparseGetErrLine() {
  return dparse_lineno;
}

void dparse_reset() {
  dparse_lineno = 1;
  dparse_forget_message();
}

void dparse_forget_message() {
  dparse_errmsg[0] = '\0';
}

TAV_PRINTF(1, 0) static void format_message(const char* format, va_list arguments) {
  std::vsnprintf(dparse_emsg_temp, sizeof dparse_emsg_temp, format, arguments);
}

void dparse_note(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  format_message(format, arguments);
  va_end(arguments);
  dparseSetErrMsg(dparse_emsg_temp);
}

int dparse_fail(dd_site site, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  format_message(format, arguments);
  va_end(arguments);
  dparseSetErrMsg(dparse_emsg_temp);
  dd_log(site, dparse_emsg_temp);
  return -1;
}

int dparse_fail_as(dd_site site, const char* recorded, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  format_message(format, arguments);
  va_end(arguments);
  dparseSetErrMsg(recorded);
  dd_log(site, dparse_emsg_temp);
  return -1;
}

int dparse_call_failed(dd_site site, const tav_ebuf& ebuf) {
  dparse_note("%s", DPARSE_INTERNAL_ERROR);
  dd_log(site, dparse_emsg_temp, ebuf);
  return -1;
}
