// Makes a dictionary of a given size, the same at every run, in the forms that bench/run compares:
//   generate SIZE FOLDER
// writes FOLDER/SIZE.def (definitions), SIZE.sql (the same facts as three tables in one
// transaction), SIZE.copy (the same for psql, as COPY), SIZE.proto and SIZE.fbs (a message or table
// per class, descriptions as comments). Sizes: S has 1,000 fields and 100 classes of 10 fields, one
// of them an ARRAY with two members, and a BUF in every tenth class; M has ten times, L a hundred
// times, XL a thousand times as many.
#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

struct type_row {
  const char* keyword;
  int code;
  const char* proto;
  const char* flat;
};
constexpr type_row STRING_TYPE{"STRING", 5, "string", "string"};
constexpr type_row ARRAY_TYPE{"ARRAY", 9, "", ""};
constexpr type_row BUF_TYPE{"BUF", 6, "bytes", "[ubyte]"};
constexpr type_row SCALARS[] = {
    STRING_TYPE,
    {"INT", 1, "int32", "int"},
    {"ENUM", 3, "int32", "int"},
    {"DECIMAL", 14, "double", "double"},
    {"TIMESTAMP", 8, "int64", "long"},
    {"POID", 7, "int64", "long"},
    {"INT64", 17, "int64", "long"},
};

struct field {
  std::string name;
  const type_row* type;
  std::string descr;
  int number;
};

struct entry {
  const field* definition;
  std::string descr;
  std::string column;  // or the table, of an array
  std::string table;   // of a BUF
  int order;
  std::vector<entry> members;
};

struct storable {
  std::string name;
  std::string table;
  std::string descr;
  std::vector<entry> entries;
};

struct size_row {
  const char* name;
  int classes;
};
constexpr size_row SIZES[] = {{"S", 100}, {"M", 1000}, {"L", 10000}, {"XL", 100000}};

std::mt19937 chance(20261121);

size_t below(size_t bound) {
  return chance() % bound;
}

std::string join(const char* a, const std::string& b) {
  std::string text(a);
  text += b;
  return text;
}

std::string words(size_t shortest, size_t longest) {
  static const char* const some[] = {"account", "balance", "of", "the",    "customer", "period",
                                     "amount",  "date",    "in", "number", "service",  "rate",
                                     "change",  "status",  "a",  "invoice"};
  const size_t length = shortest + below(longest - shortest + 1);
  std::string text;
  while (text.size() < length) {
    if (!text.empty()) text += ' ';
    text += some[below(std::size(some))];
  }
  text.resize(length);
  if (text.back() == ' ') text.back() = '.';
  return text;
}

entry make_entry(const field& definition, const std::string& stem, int order) {
  entry made{&definition, words(20, 80), join("c", std::to_string(order)), "", order, {}};
  if (definition.type == &ARRAY_TYPE) made.column = stem + "_a";
  if (definition.type == &BUF_TYPE) made.table = stem + "_b";
  return made;
}

struct dictionary {
  std::vector<field> fields;
  std::vector<storable> classes;
};

dictionary make(int class_count) {
  dictionary made;
  made.fields.reserve(static_cast<size_t>(class_count) * 10);
  for (int c = 0; c < class_count; ++c) {
    for (int f = 0; f < 10; ++f) {
      const type_row* type = f == 9                  ? &ARRAY_TYPE
                             : f == 8 && c % 10 == 0 ? &BUF_TYPE
                                                     : &SCALARS[below(std::size(SCALARS))];
      const int number = 20000 + c * 10 + f;
      made.fields.push_back({join("B_", type->keyword) + join("_", std::to_string(number)), type,
                             words(20, 80), number});
    }
  }
  for (int c = 0; c < class_count; ++c) {
    const std::string stem = join("bench_", std::to_string(c));
    storable one{join("/", stem), stem + "_t", words(20, 80), {}};
    for (int f = 0; f < 10; ++f) {
      one.entries.push_back(make_entry(made.fields[static_cast<size_t>(c * 10 + f)], stem, f));
    }
    for (int m = 0; m < 2; ++m) {
      one.entries[9].members.push_back(
          make_entry(made.fields[static_cast<size_t>(c * 10 + m)], stem, m));
    }
    made.classes.push_back(std::move(one));
  }
  return made;
}

// --- Definitions
// ------------------------------------------------------------------------------------

void write_interface(FILE* out, const entry& e, int depth) {
  const std::string tabs(static_cast<size_t>(depth), '\t');
  const char* t = tabs.c_str();
  std::fprintf(out, "%s%s %s {\n%s\tDESCR = \"%s\";\n%s\tORDER = %d;\n", t,
               e.definition->type->keyword, e.definition->name.c_str(), t, e.descr.c_str(), t,
               e.order);
  if (std::strcmp(e.definition->type->keyword, "STRING") == 0) {
    std::fprintf(out, "%s\tLENGTH = 60;\n", t);
  }
  std::fprintf(out, "%s\tCREATE = OPTIONAL;\n%s\tMODIFY = WRITEABLE;\n", t, t);
  for (const entry& member : e.members) write_interface(out, member, depth + 1);
  std::fprintf(out, "%s}\n", t);
}

void write_implementation(FILE* out, const entry& e, int depth) {
  const std::string tabs(static_cast<size_t>(depth), '\t');
  const char* t = tabs.c_str();
  std::fprintf(out, "%s%s %s {\n", t, e.definition->type->keyword, e.definition->name.c_str());
  if (!e.table.empty()) std::fprintf(out, "%s\tSQL_TABLE = \"%s\";\n", t, e.table.c_str());
  std::fprintf(out, "%s\t%s = \"%s\";\n", t, e.members.empty() ? "SQL_COLUMN" : "SQL_TABLE",
               e.column.c_str());
  for (const entry& member : e.members) write_implementation(out, member, depth + 1);
  std::fprintf(out, "%s}\n", t);
}

void write_definitions(FILE* out, const dictionary& d) {
  for (const field& f : d.fields) {
    std::fprintf(out, "%s %s {\n\tID = %d;\n\tDESCR = \"%s\";\n}\n", f.type->keyword,
                 f.name.c_str(), f.number, f.descr.c_str());
  }
  for (const storable& c : d.classes) {
    std::fprintf(out, "STORABLE CLASS %s {\n\tSEQ_START = \"1\";\n\tDESCR = \"%s\";\n",
                 c.name.c_str(), c.descr.c_str());
    for (const entry& e : c.entries) write_interface(out, e, 1);
    std::fprintf(out, "}\nSTORABLE CLASS %s IMPLEMENTATION TESSEL7 {\n\tSQL_TABLE = \"%s\";\n",
                 c.name.c_str(), c.table.c_str());
    for (const entry& e : c.entries) write_implementation(out, e, 1);
    std::fputs("}\n", out);
  }
}

// --- The same facts for the others
// --------------------------------------------------------------------

void write_sql_entry(FILE* out, const storable& c, const entry& e, const char* parent) {
  std::fprintf(out,
               "INSERT INTO entries VALUES('%s','%s','%s',%d,'%s',%d,60,'Optional','Writeable',"
               "'%s','%s');\n",
               c.name.c_str(), parent, e.definition->name.c_str(), e.definition->type->code,
               e.descr.c_str(), e.order, e.column.c_str(), e.table.c_str());
  for (const entry& member : e.members) {
    write_sql_entry(out, c, member, e.definition->name.c_str());
  }
}

constexpr char TABLES[] =
    "CREATE TABLE fields(name TEXT PRIMARY KEY, number INTEGER UNIQUE, type INTEGER, descr "
    "TEXT);\n"
    "CREATE TABLE classes(name TEXT PRIMARY KEY, seq_start INTEGER, descr TEXT,"
    " sql_table TEXT UNIQUE);\n"
    "CREATE TABLE entries(class TEXT, parent TEXT, name TEXT, type INTEGER, descr TEXT,"
    " pos INTEGER, length INTEGER, create_permission TEXT, modify_permission TEXT,"
    " sql_column TEXT, sql_table TEXT, PRIMARY KEY(class, parent, name));\n";

void write_sql(FILE* out, const dictionary& d) {
  std::fputs("BEGIN;\n", out);
  std::fputs(TABLES, out);
  for (const field& f : d.fields) {
    std::fprintf(out, "INSERT INTO fields VALUES('%s',%d,%d,'%s');\n", f.name.c_str(), f.number,
                 f.type->code, f.descr.c_str());
  }
  for (const storable& c : d.classes) {
    std::fprintf(out, "INSERT INTO classes VALUES('%s',1,'%s','%s');\n", c.name.c_str(),
                 c.descr.c_str(), c.table.c_str());
    for (const entry& e : c.entries) write_sql_entry(out, c, e, "");
  }
  std::fputs("COMMIT;\n", out);
}

// For psql: no text of the bench needs an escape.
void write_copy_entry(FILE* out, const storable& c, const entry& e, const char* parent) {
  std::fprintf(out, "%s\t%s\t%s\t%d\t%s\t%d\t60\tOptional\tWriteable\t%s\t%s\n", c.name.c_str(),
               parent, e.definition->name.c_str(), e.definition->type->code, e.descr.c_str(),
               e.order, e.column.c_str(), e.table.c_str());
  for (const entry& member : e.members) {
    write_copy_entry(out, c, member, e.definition->name.c_str());
  }
}

void write_copy(FILE* out, const dictionary& d) {
  std::fputs(TABLES, out);
  std::fputs("COPY fields FROM stdin;\n", out);
  for (const field& f : d.fields) {
    std::fprintf(out, "%s\t%d\t%d\t%s\n", f.name.c_str(), f.number, f.type->code, f.descr.c_str());
  }
  std::fputs("\\.\nCOPY classes FROM stdin;\n", out);
  for (const storable& c : d.classes) {
    std::fprintf(out, "%s\t1\t%s\t%s\n", c.name.c_str(), c.descr.c_str(), c.table.c_str());
  }
  std::fputs("\\.\nCOPY entries FROM stdin;\n", out);
  for (const storable& c : d.classes) {
    for (const entry& e : c.entries) write_copy_entry(out, c, e, "");
  }
  std::fputs("\\.\n", out);
}

// In the style of those languages, which warn of capitals.
std::string small_name(const entry& e) {
  std::string name = e.definition->name;
  for (char& c : name) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return name;
}

void write_proto_entries(FILE* out, const std::vector<entry>& entries, int depth) {
  const std::string blanks(static_cast<size_t>(depth) * 2, ' ');
  const char* b = blanks.c_str();
  int tag = 0;
  for (const entry& e : entries) {
    const std::string small = small_name(e);
    const char* name = small.c_str();
    std::fprintf(out, "%s// %s\n%s// %s\n%s// optional, writeable, column %s %s\n", b,
                 e.definition->descr.c_str(), b, e.descr.c_str(), b, e.column.c_str(),
                 e.table.c_str());
    if (e.members.empty()) {
      std::fprintf(out, "%s%s %s = %d;\n", b, e.definition->type->proto, name, ++tag);
      continue;
    }
    std::fprintf(out, "%smessage T_%s {\n", b, name);
    write_proto_entries(out, e.members, depth + 1);
    std::fprintf(out, "%s}\n%srepeated T_%s %s = %d;\n", b, b, name, name, ++tag);
  }
}

void write_proto(FILE* out, const dictionary& d) {
  std::fputs("syntax = \"proto3\";\npackage bench;\n", out);
  for (const storable& c : d.classes) {
    std::fprintf(out, "// %s\n// table %s\nmessage %s {\n", c.descr.c_str(), c.table.c_str(),
                 c.name.c_str() + 1);
    write_proto_entries(out, c.entries, 1);
    std::fputs("}\n", out);
  }
}

void write_flat_table(FILE* out, const std::string& name, const std::vector<entry>& entries) {
  for (const entry& e : entries) {
    if (!e.members.empty()) write_flat_table(out, join("T_", small_name(e)), e.members);
  }
  std::fprintf(out, "table %s {\n", name.c_str());
  for (const entry& e : entries) {
    const std::string type =
        e.members.empty() ? e.definition->type->flat : join("[T_", small_name(e)) + "]";
    std::fprintf(out, "  /// %s\n  /// %s\n  /// optional, writeable, column %s %s\n  %s:%s;\n",
                 e.definition->descr.c_str(), e.descr.c_str(), e.column.c_str(), e.table.c_str(),
                 small_name(e).c_str(), type.c_str());
  }
  std::fputs("}\n", out);
}

void write_flat(FILE* out, const dictionary& d) {
  std::fputs("namespace bench;\n", out);
  for (const storable& c : d.classes) {
    std::fprintf(out, "/// %s\n/// table %s\n", c.descr.c_str(), c.table.c_str());
    write_flat_table(out, c.name.substr(1), c.entries);
  }
}

template <class Write>
void write_file(const std::string& path, const dictionary& d, Write write) {
  FILE* out = std::fopen(path.c_str(), "w");
  if (out == nullptr) {
    std::perror(path.c_str());
    std::exit(1);
  }
  write(out, d);
  if (std::fclose(out) != 0) {
    std::perror(path.c_str());
    std::exit(1);
  }
}

}  // namespace

int main(int argc, char** argv) {
  int classes = 0;
  for (const size_row& row : SIZES) {
    if (argc == 3 && std::strcmp(argv[1], row.name) == 0) classes = row.classes;
  }
  if (classes == 0) {
    std::fputs("usage: generate S|M|L|XL FOLDER\n", stderr);
    return 2;
  }
  const dictionary d = make(classes);
  const std::string stem = join(argv[2], "/") + argv[1];
  write_file(stem + ".def", d, write_definitions);
  write_file(stem + ".sql", d, write_sql);
  write_file(stem + ".copy", d, write_copy);
  write_file(stem + ".proto", d, write_proto);
  write_file(stem + ".fbs", d, write_flat);
}
