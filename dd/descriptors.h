// The three descriptors that every program is given.
#ifndef DD_DESCRIPTORS_H
#define DD_DESCRIPTORS_H

// Takes the places of standard input, output and error that were closed when the program began, so
// that no file or socket that is opened later gets them. Whoever reads or writes there fails, as
// with a closed one. False where that cannot be done. A main does this before all else.
bool dd_fill_descriptors();

#endif
