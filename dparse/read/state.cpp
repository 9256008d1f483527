#include "dparse/read/state.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "dd/report.h"
#include "dparse/read/reader.h"

char dparse_fname[dparse::TEXT_SIZE];
int dparse_lineno = 1;
char dparse_errmsg[dparse::TEXT_SIZE];
char dparse_emsg_temp[dparse::MESSAGE_SIZE];

namespace dparse {

// The message that dparse_errmsg holds. NONE also for a text that dparseSetErrMsg was given.
static message standing = message::NONE;
// The first failure ends the file and each level around it logs one more, so that this is room
// enough for a file; what comes after it is not kept.
static message logged[MAX_DEPTH + 16];
static size_t logged_count = 0;

message standing_message() {
  return dparse_errmsg[0] != '\0' ? standing : message::NONE;
}

std::span<const message> logged_messages() {
  return {logged, logged_count};
}

void reset() {
  logged_count = 0;
  dparse_lineno = 1;
  forget_message();
}

void forget_message() {
  dparse_errmsg[0] = '\0';
}

argument::argument(int number)
    : text_(digits_,
            static_cast<size_t>(std::to_chars(digits_, std::end(digits_), number).ptr - digits_)) {}

// Formats the message in dparse_emsg_temp, cut to its size.
static void format_message(message which, argument_list arguments) {
  char* to = dparse_emsg_temp;
  const auto put = [&to](std::string_view piece) {
    to += piece.copy(to, static_cast<size_t>(std::end(dparse_emsg_temp) - 1 - to));
  };
  std::string_view text = row_of(which).text;
  for (const argument& given : arguments) {
    const size_t place = std::min(text.find('%'), text.size());
    put(text.substr(0, place));
    put(given.text());
    text.remove_prefix(std::min(place + 2, text.size()));
  }
  put(text);
  *to = '\0';
}

static void record(message which, const char* text) {
  if (dparse_errmsg[0] != '\0') return;
  dparseSetErrMsg(text);
  standing = dparse_errmsg[0] != '\0' ? which : message::NONE;
}

static void keep_logged(message which) {
  if (logged_count < std::size(logged)) logged[logged_count++] = which;
}

void note_with(message which, argument_list arguments) {
  format_message(which, arguments);
  record(which, dparse_emsg_temp);
}

int fail_with(dd_site site, message which, argument_list arguments) {
  return fail_as(site, dparse_emsg_temp, which, arguments);
}

int fail_as(dd_site site, const char* recorded, message which, argument_list arguments) {
  format_message(which, arguments);
  record(which, recorded);
  keep_logged(which);
  dd_log(site, dparse_emsg_temp);
  return -1;
}

int call_failed(dd_site site, const tav_ebuf& ebuf) {
  note(message::INTERNAL_ERROR);
  keep_logged(message::INTERNAL_ERROR);
  dd_log(site, dparse_emsg_temp, ebuf);
  return -1;
}

}  // namespace dparse

// A long name leaves the byte before the terminator as it was: deliberate.
void dparseSetFname(const char* name) {
  if (name == nullptr) name = "";
  const size_t length = strnlen(name, dparse::TEXT_SIZE - 1);
  if (length < dparse::TEXT_SIZE - 1) {
    std::memcpy(dparse_fname, name, length + 1);
    return;
  }
  std::memcpy(dparse_fname, name, dparse::TEXT_SIZE - 2);
  dparse_fname[dparse::TEXT_SIZE - 1] = '\0';
}

const char* dparseGetFname() {
  return dparse_fname;
}

void dparseSetErrMsg(const char* text) {
  if (text == nullptr || dparse_errmsg[0] != '\0') return;
  tav_strlcpy(dparse_errmsg, text, sizeof dparse_errmsg);
  dparse::standing = dparse::message::NONE;
}

const char* dparseGetErrMsg() {
  return dparse_errmsg;
}

int dparseGetErrLine() {
  return dparse_lineno;
}
