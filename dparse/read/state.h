// The reader's failing: one statement that records (the first message stands), logs, and gives -1.
#ifndef DPARSE_READ_STATE_H
#define DPARSE_READ_STATE_H

#include <initializer_list>
#include <string_view>
#include <type_traits>

#include "dd/call.h"
#include "dparse/read/messages.h"

namespace dparse {

// What stands for a conversion of a message's text: a text for %s, a number for %d.
class argument {
 public:
  argument(const char* text) : text_(text) {}
  argument(std::string_view text) : text_(text) {}
  argument(int number);
  argument(const argument&) = delete;
  argument& operator=(const argument&) = delete;

  std::string_view text() const { return text_; }

 private:
  char digits_[12];
  std::string_view text_;
};
using argument_list = std::initializer_list<argument>;

template <class T>
inline constexpr char LETTER_OF = std::is_same_v<T, int> ? 'd' : 's';

// A message whose text takes arguments of these types; another does not compile.
template <class... Types>
struct message_with {
  consteval message_with(message one) : which(one) {
    constexpr char letters[] = {LETTER_OF<Types>..., '\0'};
    if (!takes(row_of(one).text, letters)) throw "the text takes other arguments";
  }
  message which;
};

// Line 1, no message: the start of a file.
void reset();
// Forgets the message.
void forget_message();
// Records the internal error that the buffer holds, and logs it with the buffer; gives -1.
int call_failed(dd_site site, const tav_ebuf& ebuf);
// Gives 1, or -1 with that failure when the buffer holds an error.
inline int done(dd_site site, const tav_ebuf& ebuf) {
  return dd_failed(ebuf) ? call_failed(site, ebuf) : 1;
}

// Records the message without a log record.
void note_with(message which, argument_list arguments);
// Records and logs the message; gives -1.
int fail_with(dd_site site, message which, argument_list arguments);
// Records one text and logs another; gives -1.
int fail_as(dd_site site, const char* recorded, message which, argument_list arguments);

// The same where the message is known when this is compiled.
template <class... Types>
void note(std::type_identity_t<message_with<Types...>> message, const Types&... arguments) {
  note_with(message.which, {arguments...});
}
template <class... Types>
int fail(dd_site site, std::type_identity_t<message_with<Types...>> message,
         const Types&... arguments) {
  return fail_with(site, message.which, {arguments...});
}

}  // namespace dparse

#endif
