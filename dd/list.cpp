#include "dd/list.h"

#include <utility>

#include "dd/values.h"

dd_list::dd_list(const dd_shape& shape, dd_flist list)
    : shape_(&shape), owner_(std::move(list)), list_(owner_.get()) {}

dd_list::dd_list(const dd_shape& shape, tav_flist_t* borrowed) : shape_(&shape), list_(borrowed) {}

void dd_list::give(dd_flist list) {
  owner_ = std::move(list);
  list_ = owner_.get();
  lent_ = {};
  forget_indexes();
}

void dd_list::forget_indexes() {
  names_built_ = false;
  names_ = {};
  forget_numbers();
}

void dd_list::forget_indexes_for(dd_list& other) {
  other.forget_indexes();
  std::swap(names_, other.names_);
  std::swap(numbers_, other.numbers_);
  forget_indexes();
}

void dd_list::forget_numbers() {
  numbers_built_ = false;
  numbers_ = {};
}

template <class Index, class Add>
bool dd_list::build(Index& index, bool& built, Add add, tav_ebuf* ebuf) {
  if (built || dd_failed(*ebuf)) return !dd_failed(*ebuf);
  const int32_t own = list_ != nullptr ? count(ebuf) : 0;
  if (lent_.empty()) lent_.reserve(reserved_for_lent_);
  index.clear();
  index.reserve(static_cast<size_t>(own) + reserved_for_lent_);
  dd_list_walk walk(*this);
  while (tav_flist_t* element = walk.next(ebuf)) add(element);
  built = !dd_failed(*ebuf);
  return built;
}

tav_flist_t* dd_list::find(const char* name, tav_ebuf* ebuf) {
  const dd_known* found = find_known(name, dd_hash(name), ebuf);
  return found != nullptr ? found->element : nullptr;
}

bool dd_list::build_names(tav_ebuf* ebuf) {
  const auto add = [&](tav_flist_t* element) { add_name(element, {}, ebuf); };
  return build(names_, names_built_, add, ebuf);
}

const dd_known* dd_list::find_known(const char* name, uint32_t hash, tav_ebuf* ebuf) {
  return build_names(ebuf) ? names_.find(name, hash) : nullptr;
}

const dd_known* dd_list::find_known(std::string_view name, uint32_t hash, tav_ebuf* ebuf) {
  return build_names(ebuf) ? names_.find(name, hash) : nullptr;
}

tav_flist_t* dd_list::find_number(int32_t number, tav_ebuf* ebuf) {
  const auto add = [&](tav_flist_t* element) { add_number(element, ebuf); };
  if (!build(numbers_, numbers_built_, add, ebuf)) return nullptr;
  tav_flist_t* const* found = numbers_.find(number);
  return found != nullptr ? *found : nullptr;
}

int32_t dd_list::count(tav_ebuf* ebuf) const {
  return tav_flist_elem_count(list_, shape_->array, ebuf);
}

void dd_list::append(dd_flist element, tav_ebuf* ebuf, std::optional<uint32_t> hash) {
  tav_flist_t* borrowed = element.get();
  dd_append(list_, shape_->array, std::move(element), ebuf);
  note(borrowed, hash, ebuf);
}

void dd_list::drop(int32_t id, tav_flist_t* element, tav_ebuf* ebuf) {
  if (names_built_) names_.remove(dd_text(element, shape_->name, ebuf), {element});
  if (numbers_built_) numbers_.remove(dd_int(element, shape_->number, ebuf), element);
  tavi_flist_drop(list_, shape_->array, id, ebuf);
}

void dd_list::lend(tav_flist_t* element, tav_ebuf* ebuf) {
  if (dd_failed(*ebuf)) return;
  lent_.push_back(element);
  note(element, {}, ebuf);
}

void dd_list::lend(const dd_known& known, const dd_key& key, tav_ebuf* ebuf) {
  if (dd_failed(*ebuf)) return;
  lent_.push_back(known.element);
  if (names_built_) names_.add(key.name, key.hash, known);
  if (numbers_built_) numbers_.add(key.number, known.element);
}

// Adds a new element to those indexes that are built.
void dd_list::note(tav_flist_t* element, std::optional<uint32_t> hash, tav_ebuf* ebuf) {
  if (names_built_ && !dd_failed(*ebuf)) add_name(element, hash, ebuf);
  if (numbers_built_ && !dd_failed(*ebuf)) add_number(element, ebuf);
}

void dd_list::add_name(tav_flist_t* element, std::optional<uint32_t> hash, tav_ebuf* ebuf) {
  const char* name = dd_text(element, shape_->name, ebuf);
  dd_known known{element};
  if (shape_->type != 0) {
    const int32_t* type = dd_int_or_null(element, shape_->type, ebuf);
    if (type != nullptr) known.type = *type;
  }
  if (!dd_failed(*ebuf)) names_.add(name, hash ? *hash : dd_hash(name), known);
}

void dd_list::add_number(tav_flist_t* element, tav_ebuf* ebuf) {
  const int32_t number = dd_int(element, shape_->number, ebuf);
  if (!dd_failed(*ebuf)) numbers_.add(number, element);
}

tav_flist_t* dd_list_walk::next(tav_ebuf* ebuf) {
  if (dd_failed(*ebuf)) return nullptr;
  if (has_own_) {
    if (tav_flist_t* element = own_.next(ebuf)) return element;
    if (dd_failed(*ebuf)) return nullptr;
    has_own_ = false;
  }
  return place_ < lent_.size() ? lent_[place_++] : nullptr;
}
