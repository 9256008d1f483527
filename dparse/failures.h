// What reader and writer say in the same words.
#ifndef DPARSE_FAILURES_H
#define DPARSE_FAILURES_H

namespace dparse {

// A client-library call failed.
inline constexpr char INTERNAL_ERROR_TEXT[] = "Error: Internal Error";
// A field of a type that cannot stand there.
inline constexpr char INVALID_TYPE_TEXT[] = "Invalid field type";

}  // namespace dparse

#endif
