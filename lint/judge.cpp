#include "lint/judge.h"

#include <memory>
#include <new>

#include "dd/utf8.h"
#include "dd/visible.h"
#include "dparse/characters.h"
#include "dparse/read/reader.h"
#include "dparse/read/state.h"

namespace lint {

using dparse::message;

static dd_flist new_list() {
  tav_ebuf ebuf{};
  dd_flist list(tav_flist_create(&ebuf));
  if (list == nullptr) throw std::bad_alloc();
  return list;
}

definitions::definitions()
    : fields(DD_FIELDS, new_list()),
      interfaces(DD_CLASSES, new_list()),
      implementations(DD_CLASSES, new_list()) {}

namespace {

struct close_stream {
  void operator()(FILE* stream) const { std::fclose(stream); }
};
using text_stream = std::unique_ptr<FILE, close_stream>;

// What a stream has read ahead. The reader serves one parse at a time.
char read_ahead[1 << 16];

}  // namespace

static text_stream open(std::string_view text) {
  text_stream stream(fmemopen(const_cast<char*>(text.data()), text.size(), "r"));
  if (stream == nullptr) throw std::bad_alloc();
  std::setvbuf(stream.get(), read_ahead, _IOFBF, sizeof read_ahead);
  return stream;
}

static bool at_end(FILE* stream) {
  const int c = dparse_fgetc(stream);
  dparse_ungetc(c, stream);
  return c == EOF;
}

// One line of at most so many bytes, cut before a character.
static std::string one_line(std::string_view text) {
  constexpr size_t MOST = 240;
  const std::string_view shown = dd_utf8_cut(text, MOST);
  return dd_visible(shown).append(shown.size() < text.size() ? "..." : "");
}

// The reader's bare word for an attribute that it does not know says too little by itself; that it
// is an error is said beside the sentence.
static std::string sentence_of(message told) {
  constexpr std::string_view SAID = "Error: ";
  std::string_view message = dparseGetErrMsg();
  if (message.starts_with(SAID)) message.remove_prefix(SAID.size());
  const std::string text = one_line(message);
  if (told != message::UNKNOWN_FIELD_ATTRIBUTE) return text;
  return "Invalid Attribute '" + text + "'";
}

// A message without a text, of an empty word, does not stand.
static message failure() {
  const message standing = dparse::standing_message();
  if (standing != message::NONE) return standing;
  const auto logged = dparse::logged_messages();
  return logged.empty() ? message::INTERNAL_ERROR : logged.front();
}

// Whether the reader asked for a token behind the last one. A word that ends the text shows the
// stream's end by being taken; with a line end behind it, it does not.
static bool is_behind_last(FILE* stream, std::string_view text) {
  if (std::feof(stream) == 0) return false;
  const bool is_shown_by_word = !dparse::is_any_of(text.back(), dparse::ENDS_WORD);
  return !is_shown_by_word || judge(std::string(text).append("\n")).ended;
}

static void note_failure(FILE* stream, std::string_view text, verdict& result) {
  result.told = failure();
  if (result.told == message::INTERNAL_ERROR) throw std::bad_alloc();
  result.sentence = sentence_of(result.told);
  result.line = static_cast<uint64_t>(dparseGetErrLine());
  result.taken = static_cast<size_t>(std::ftell(stream));
  result.ended = is_behind_last(stream, text);
}

verdict judge(std::string_view text, definitions& to) {
  verdict result;
  dparse::reset();
  if (text.empty()) return result;
  const text_stream stream = open(text);
  while (!at_end(stream.get())) {
    if (dparseFromTop(stream.get(), &to.fields, &to.interfaces, &to.implementations, nullptr) < 1) {
      note_failure(stream.get(), text, result);
      break;
    }
    ++result.definitions;
  }
  return result;
}

verdict judge(std::string_view text) {
  definitions dropped;
  return judge(text, dropped);
}

}  // namespace lint
