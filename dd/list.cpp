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
  built_ = false;
}

tav_flist_t* dd_list::find(const char* name, tav_ebuf* ebuf) {
  return build(ebuf) ? names_.find(name) : nullptr;
}

tav_flist_t* dd_list::find_number(int32_t number, tav_ebuf* ebuf) {
  return build(ebuf) ? numbers_.find(number) : nullptr;
}

int32_t dd_list::count(tav_ebuf* ebuf) const {
  return tav_flist_elem_count(list_, shape_->array, ebuf);
}

void dd_list::put(int32_t id, dd_flist element, tav_ebuf* ebuf) {
  tav_flist_t* borrowed = element.get();
  dd_put(list_, shape_->array, id, std::move(element), ebuf);
  if (built_ && !dd_failed(*ebuf)) add(borrowed, ebuf);
}

void dd_list::append(dd_flist element, tav_ebuf* ebuf) {
  put(count(ebuf), std::move(element), ebuf);
}

void dd_list::drop(int32_t id, tav_flist_t* element, tav_ebuf* ebuf) {
  if (built_) {
    names_.remove(dd_text(element, shape_->name, ebuf), element);
    if (shape_->number != 0) numbers_.remove(dd_int(element, shape_->number, ebuf), element);
  }
  tavi_flist_drop(list_, shape_->array, id, ebuf);
}

bool dd_list::build(tav_ebuf* ebuf) {
  if (built_ || dd_failed(*ebuf)) return !dd_failed(*ebuf);
  names_.clear();
  numbers_.clear();
  dd_walk walk(list_, shape_->array);
  while (tav_flist_t* element = walk.next(ebuf)) add(element, ebuf);
  built_ = !dd_failed(*ebuf);
  return built_;
}

void dd_list::add(tav_flist_t* element, tav_ebuf* ebuf) {
  const char* name = dd_text(element, shape_->name, ebuf);
  const int32_t number = shape_->number != 0 ? dd_int(element, shape_->number, ebuf) : 0;
  if (dd_failed(*ebuf)) return;
  names_.add(name, element);
  if (shape_->number != 0) numbers_.add(number, element);
}
