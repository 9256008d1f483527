#include "dparse/read/state.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <iterator>

#include "dd/report.h"
#include "dparse/read/reader.h"

using dparse::message;

char dparse_fname[DPARSE_TEXT_SIZE];
int dparse_lineno = 1;
char dparse_errmsg[DPARSE_TEXT_SIZE];
char dparse_emsg_temp[DPARSE_MESSAGE_SIZE];

// The message that dparse_errmsg holds. NONE also for a text that dparseSetErrMsg was given.
static message standing = message::NONE;
// The first failure ends the file and each level around it logs one more, so that this is room
// enough for a file; what comes after it is not kept.
static message logged[DPARSE_MAX_DEPTH + 16];
static size_t logged_count = 0;

message dparse::standing_message() {
  return dparse_errmsg[0] != '\0' ? standing : message::NONE;
}

std::span<const message> dparse::logged_messages() {
  return {logged, logged_count};
}

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

void dparseSetErrMsg(const char* text) {
  if (text == nullptr || dparse_errmsg[0] != '\0') return;
  tav_strlcpy(dparse_errmsg, text, sizeof dparse_errmsg);
  standing = message::NONE;
}

const char* dparseGetErrMsg() {
  return dparse_errmsg;
}

int dparseGetErrLine() {
  return dparse_lineno;
}

void dparse::reset() {
  logged_count = 0;
  dparse_lineno = 1;
  dparse::forget_message();
}

void dparse::forget_message() {
  dparse_errmsg[0] = '\0';
}

dparse::argument::argument(int number)
    : text_(digits_,
            static_cast<size_t>(std::to_chars(digits_, std::end(digits_), number).ptr - digits_)) {}

// Formats the message in dparse_emsg_temp, cut to its size.
static void format_message(message which, dparse::argument_list arguments) {
  char* to = dparse_emsg_temp;
  const auto put = [&to](std::string_view piece) {
    to += piece.copy(to, static_cast<size_t>(std::end(dparse_emsg_temp) - 1 - to));
  };
  std::string_view text = dparse::row_of(which).text;
  for (const dparse::argument& argument : arguments) {
    const size_t place = std::min(text.find('%'), text.size());
    put(text.substr(0, place));
    put(argument.text());
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

void dparse::note_with(message which, dparse::argument_list arguments) {
  format_message(which, arguments);
  record(which, dparse_emsg_temp);
}

int dparse::fail_with(dd_site site, message which, dparse::argument_list arguments) {
  return dparse::fail_as(site, dparse_emsg_temp, which, arguments);
}

int dparse::fail_as(dd_site site, const char* recorded, message which,
                    dparse::argument_list arguments) {
  format_message(which, arguments);
  record(which, recorded);
  keep_logged(which);
  dd_log(site, dparse_emsg_temp);
  return -1;
}

int dparse::call_failed(dd_site site, const tav_ebuf& ebuf) {
  dparse::note(message::INTERNAL_ERROR);
  keep_logged(message::INTERNAL_ERROR);
  dd_log(site, dparse_emsg_temp, ebuf);
  return -1;
}
