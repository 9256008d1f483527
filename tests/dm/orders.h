// Orders in which the operations of two administrators reach a dictionary, each order run on the
// same one.
#ifndef TESTS_DM_ORDERS_H
#define TESTS_DM_ORDERS_H

#include "told.h"

// Of many runs those that are made: one of so many (a prime, so that no pattern is passed over).
// Which are is drawn, and printed; TAV_ORDERS=N asks for those, TAV_ORDERS=all for every one.
class drawn_runs {
 public:
  explicit drawn_runs(int stride);
  bool takes_next() { return count_++ % stride_ == offset_; }
  int count() const { return count_; }  // that were asked for
  int stride() const { return stride_; }

 private:
  int stride_, offset_ = 0, count_ = 0;
};

class orders : public dictionary {
 protected:
  // A server takes half a second for each order.
  orders(int stride_of_file, int stride_of_server)
      : runs(on_server() ? stride_of_server : stride_of_file) {}
  // Puts into a new dictionary what each order begins with.
  virtual void fill() = 0;
  // The dictionary as it is before an order.
  void start_anew();

  drawn_runs runs;

 private:
  std::string kept_{};
};

#endif
