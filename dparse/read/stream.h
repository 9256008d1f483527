// The characters that a stream has read ahead, looked at in place.
//
// Taking them is what getc_unlocked does, many at a time: position, push-back and end of file stay
// the stream's own. Where a C library does not show them there are none, and every character goes
// through getc_unlocked.
#ifndef DPARSE_READ_STREAM_H
#define DPARSE_READ_STREAM_H

#include <cstdio>
#include <string_view>

namespace dparse {

#ifdef __GLIBC__

inline std::string_view read_ahead(FILE* stream) {
  return {stream->_IO_read_ptr, static_cast<size_t>(stream->_IO_read_end - stream->_IO_read_ptr)};
}
inline void take_ahead(FILE* stream, size_t count) {
  stream->_IO_read_ptr += count;
}

#else

inline std::string_view read_ahead(FILE*) {
  return {};
}
inline void take_ahead(FILE*, size_t) {}

#endif

}  // namespace dparse

#endif
