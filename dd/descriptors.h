// The three descriptors that every program is given.
#ifndef DD_DESCRIPTORS_H
#define DD_DESCRIPTORS_H

// Opens /dev/null for those of the descriptors 0, 1 and 2 that were closed when the program began,
// so that no file or socket opened later gets their numbers. Using them still fails, as with a
// closed one. False where that cannot be done. A main does this before all else.
bool dd_fill_descriptors();

#endif
