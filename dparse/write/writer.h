// The definition language, written: lists of the dictionary become definition text on a stream.
//
// Every call gives 1, or -1 after a text on standard error and a record in the log (unless it says
// otherwise); what was written until then stays on the stream. The lists are only read. Whether the
// stream took the text is the caller's to ask (ferror).
#ifndef DPARSE_WRITE_WRITER_H
#define DPARSE_WRITE_WRITER_H

#include <cstdio>

#include "dd/list.h"
#include "dd/vantor.h"
#include "dparse/class_names.h"
#include "dparse/outline.h"

// --- Lists ------------------------------------------------------------------------------------
// `ebuf` is the caller's error buffer; it is clear when the whole list was written. `field_list`
// (DD_FIELDS) is the whole dictionary's: types are looked up there, by name.

int dparseExportInterfaceFields(FILE* stream, tav_flist_t* field_list, tav_ebuf* ebuf);
int dparseExportInterfaceClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                                 tav_ebuf* ebuf);
int dparseExportImplClasses(FILE* stream, dd_list* field_list, tav_flist_t* class_list,
                            tav_ebuf* ebuf);
// The same of fields and classes that were gathered already.
int dparseExportInterfaceFields(FILE* stream, std::span<tav_flist_t* const> fields, tav_ebuf* ebuf);
int dparseExportInterfaceClasses(FILE* stream, dd_list* field_list, dparse::class_outline& classes,
                                 tav_ebuf* ebuf);
int dparseExportImplClasses(FILE* stream, dd_list* field_list, dparse::class_outline& classes,
                            tav_ebuf* ebuf);

// The field entries of a class or of an entry, at that depth (1 for those of a class), with all
// entries inside them.
int dparseExportClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth);
int dparseExportImplClassFields(FILE* stream, dd_list* field_list, tav_flist_t* parent, int depth);

// --- Parts ------------------------------------------------------------------------------------
// The lines that tell how a field of that type is stored; null texts count as empty.
int dparseExportClassImplFieldAttrs(FILE* stream, int type_code, const char* name_text,
                                    const char* storage_text, int indent);
// A banner of three lines; null texts count as empty.
int dparseExportComment(FILE* stream, int width, int indent, const char* text1, const char* text2);
// The type's keyword. Of an unknown code the stream shows a line too: the text is visibly broken.
int dparseExportFieldType(FILE* stream, int type_code);
// keyword = "value";  Nothing for a value that is null or empty.
int dparseExportString(FILE* stream, const char* keyword, const char* value, int indent);
// Makes tabs and newlines two characters each (\t, \n). *text is a heap string of the caller's; it
// is reallocated. -1 without memory or text, with *text unchanged and nothing reported.
int dparseEncodeTabsNewlines(char** text);

// The type code of the first field of that name, or -1.
int dparseGetTypeFromField(dd_list* field_list, const char* field_name);
#endif
