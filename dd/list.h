// The elements of one array of a list, with indexes: found by name or by number in constant time.
//
// An index is built at the first look-up that needs it. It stays right as long as elements are
// added and dropped through the calls below, and no element changes its name or number.
#ifndef DD_LIST_H
#define DD_LIST_H

#include <optional>

#include "dd/index.h"
#include "dd/leave.h"
#include "dd/owners.h"
#include "dd/walk.h"

// Which array is indexed, and which fields of an element hold its name, number and type.
struct dd_shape {
  uint32_t array;
  uint32_t name;
  uint32_t number;  // 0: the elements have none
  uint32_t type;    // 0: the index by name does not keep the type
};

inline constexpr dd_shape DD_FIELDS{TAV_FLD_FIELD, TAV_FLD_FIELD_NAME, TAV_FLD_FIELD_NUM, 0};
inline constexpr dd_shape DD_TYPED_FIELDS{TAV_FLD_FIELD, TAV_FLD_FIELD_NAME, TAV_FLD_FIELD_NUM,
                                          TAV_FLD_FIELD_TYPE};
inline constexpr dd_shape DD_CLASSES{TAV_FLD_OBJ_DESC, TAV_FLD_NAME, 0, 0};
inline constexpr dd_shape DD_ENTRIES{TAV_FLD_OBJ_ELEM, TAV_FLD_FIELD_NAME, 0, 0};

// What the index by name keeps of an element, so that a look-up need not read the element itself.
struct dd_known {
  tav_flist_t* element = nullptr;
  std::optional<int32_t> type{};  // none: the element has none, or the shape keeps none

  bool operator==(const dd_known& other) const { return element == other.element; }
};

// An element's name, its hash and its number, for a caller that has read them already.
struct dd_key {
  const char* name;
  uint32_t hash;  // dd_hash of the name
  int32_t number;
};

// Elements of other lists may be lent to it. Look-ups and dd_list_walk give them after the list's
// own elements. They must live as long as they are looked up here.
class dd_list {
 public:
  // Takes the list over; null where give() will set it later.
  explicit dd_list(const dd_shape& shape, dd_flist list = nullptr);
  // Borrows the list (also a class or a field entry: they are lists).
  dd_list(const dd_shape& shape, tav_flist_t* borrowed);

  // The list itself, borrowed; null where there is none.
  tav_flist_t* get() const { return list_; }
  // Takes another list over and frees the one before.
  void give(dd_flist list);
  // Frees the memory of the indexes, or of that by number; the next look-up builds it anew.
  void forget_indexes();
  void forget_numbers();
  // Forgets the indexes of both, and takes over the memory of the other's for the next.
  void forget_indexes_for(dd_list& other);
  // Leaves the list that it owns to the end of the process (dd_leave).
  void leave() { dd_leave(std::move(owner_)); }

  // The first element of that name (or number), borrowed. Null: there is none, or the call failed,
  // which the buffer tells. A missing name counts as empty, a missing number as 0.
  tav_flist_t* find(const char* name, tav_ebuf* ebuf);
  // The same by name and hash, with the type; valid until an element is added or dropped.
  const dd_known* find_known(const char* name, uint32_t hash, tav_ebuf* ebuf);
  const dd_known* find_known(std::string_view name, uint32_t hash, tav_ebuf* ebuf);
  // Prefetches the index slot of a name that will be looked up soon.
  void prefetch_name(uint32_t hash) const { names_.prefetch(hash); }
  tav_flist_t* find_number(int32_t number, tav_ebuf* ebuf);

  // The number of the list's own elements.
  int32_t count(tav_ebuf* ebuf) const;
  // Puts the element at the end. `hash` is that of its name, from a caller that has it already.
  void append(dd_flist element, tav_ebuf* ebuf, std::optional<uint32_t> hash = {});
  // Drops the element, whose id is `id`.
  void drop(int32_t id, tav_flist_t* element, tav_ebuf* ebuf);
  // Reserves room for about `count` elements that will be lent, in indexes that are not built
  // yet.
  void reserve_lent(int32_t count) { reserved_for_lent_ = static_cast<size_t>(count); }
  // Lends the element to this list; it stays in its own.
  void lend(tav_flist_t* element, tav_ebuf* ebuf);
  void lend(const dd_known& known, const dd_key& key, tav_ebuf* ebuf);

 private:
  friend class dd_list_walk;

  template <class Index, class Add>
  bool build(Index& index, bool& built, Add add, tav_ebuf* ebuf);
  bool build_names(tav_ebuf* ebuf);
  void note(tav_flist_t* element, std::optional<uint32_t> hash, tav_ebuf* ebuf);
  void add_name(tav_flist_t* element, std::optional<uint32_t> hash, tav_ebuf* ebuf);
  void add_number(tav_flist_t* element, tav_ebuf* ebuf);

  const dd_shape* shape_;
  dd_flist owner_;
  tav_flist_t* list_;
  std::vector<tav_flist_t*> lent_;
  size_t reserved_for_lent_ = 0;
  bool names_built_ = false;
  bool numbers_built_ = false;
  dd_index<dd_by_name, dd_known> names_;
  dd_index<dd_by_number> numbers_;
};

// Walks a list's own elements and then those lent to it, as dd_walk does.
class dd_list_walk {
 public:
  explicit dd_list_walk(const dd_list& list)
      : own_(list.get(), list.shape_->array), has_own_(list.get() != nullptr), lent_(list.lent_) {}

  // The next element, borrowed; null at the end and on a failure.
  tav_flist_t* next(tav_ebuf* ebuf);
  // Whether the element that next() gave last was lent.
  bool is_lent() const { return !has_own_; }

 private:
  dd_walk own_;
  bool has_own_;  // the list's own elements are not all walked yet
  const std::vector<tav_flist_t*>& lent_;
  size_t place_ = 0;
};

#endif
