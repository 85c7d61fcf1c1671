#pragma once

// Polymorphic base of everything an owning LinkedList can hold. Its only
// virtual operation is the destructor, so a list can delete any item.
class ListStorable {
 public:
  virtual ~ListStorable() = default;

 protected:
  ListStorable() = default;
  ListStorable(const ListStorable&) = default;
  ListStorable& operator=(const ListStorable&) = default;
};
