#include "Linearization.h"

#include <algorithm>

#include "vesk/VeskError.h"
#include "vesk/host/ClassRecord.h"

namespace vesk::host {

namespace {

using Order = std::span<ClassRecord* const>;

bool isInTail(Order order, ClassRecord* cls) {
  return !order.empty() && std::ranges::find(order.subspan(1), cls) != order.end();
}

/// The first head that no order still has behind its head; null if there is none.
ClassRecord* nextOf(std::vector<Order> const& orders) {
  for (Order order : orders) {
    if (order.empty()) continue;
    ClassRecord* head = order[0];
    if (std::ranges::none_of(orders, [&](Order other) { return isInTail(other, head); })) return head;
  }
  return nullptr;
}

}  // namespace

std::vector<ClassRecord*> linearize(ClassRecord& cls, std::span<ClassRecord* const> superclasses) {
  std::vector<ClassRecord*> result{&cls};
  std::vector<Order> orders;
  for (ClassRecord* super : superclasses) orders.push_back(super->linearization());
  orders.push_back(superclasses);
  while (std::ranges::any_of(orders, [](Order order) { return !order.empty(); })) {
    ClassRecord* next = nextOf(orders);
    if (!next)
      throw VeskError("The superclasses of class '" + std::string(cls.fName.view()) +
                      "' cannot be put in one order");
    result.push_back(next);
    for (Order& order : orders)
      if (!order.empty() && order[0] == next) order = order.subspan(1);
  }
  return result;
}

}  // namespace vesk::host
