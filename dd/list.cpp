#include "dd/list.h"

#include <utility>

#include "dd/values.h"
#include "dd/walk.h"

dd_list::dd_list(const dd_shape& shape, dd_flist list)
    : shape_(&shape), owner_(std::move(list)), list_(owner_.get()) {}

dd_list::dd_list(const dd_shape& shape, tav_flist_t* borrowed) : shape_(&shape), list_(borrowed) {}

void dd_list::give(dd_flist list) {
  owner_ = std::move(list);
  list_ = owner_.get();
  names_built_ = false;
  numbers_built_ = false;
}

template <class Add>
bool dd_list::build(bool& built, Add add, tav_ebuf* ebuf) {
  if (built || dd_failed(*ebuf)) return !dd_failed(*ebuf);
  dd_walk walk(list_, shape_->array);
  while (tav_flist_t* element = walk.next(ebuf)) (this->*add)(element, ebuf);
  built = !dd_failed(*ebuf);
  return built;
}

tav_flist_t* dd_list::find(const char* name, tav_ebuf* ebuf) {
  if (!names_built_) names_.clear();
  return build(names_built_, &dd_list::add_name, ebuf) ? names_.find(name) : nullptr;
}

tav_flist_t* dd_list::find_number(int32_t number, tav_ebuf* ebuf) {
  if (!numbers_built_) numbers_.clear();
  return build(numbers_built_, &dd_list::add_number, ebuf) ? numbers_.find(number) : nullptr;
}

int32_t dd_list::count(tav_ebuf* ebuf) const {
  return tav_flist_elem_count(list_, shape_->array, ebuf);
}

void dd_list::put(int32_t id, dd_flist element, tav_ebuf* ebuf) {
  tav_flist_t* borrowed = element.get();
  dd_put(list_, shape_->array, id, std::move(element), ebuf);
  if (names_built_ && !dd_failed(*ebuf)) add_name(borrowed, ebuf);
  if (numbers_built_ && !dd_failed(*ebuf)) add_number(borrowed, ebuf);
}

void dd_list::append(dd_flist element, tav_ebuf* ebuf) {
  put(count(ebuf), std::move(element), ebuf);
}

void dd_list::drop(int32_t id, tav_flist_t* element, tav_ebuf* ebuf) {
  if (names_built_) names_.remove(dd_text(element, shape_->name, ebuf), element);
  if (numbers_built_) numbers_.remove(dd_int(element, shape_->number, ebuf), element);
  tavi_flist_drop(list_, shape_->array, id, ebuf);
}

void dd_list::add_name(tav_flist_t* element, tav_ebuf* ebuf) {
  const char* name = dd_text(element, shape_->name, ebuf);
  if (!dd_failed(*ebuf)) names_.add(name, element);
}

void dd_list::add_number(tav_flist_t* element, tav_ebuf* ebuf) {
  const int32_t number = dd_int(element, shape_->number, ebuf);
  if (!dd_failed(*ebuf)) numbers_.add(number, element);
}
