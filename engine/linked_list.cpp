#include "linked_list.h"

LinkedList::~LinkedList() {
  clear();
}

void LinkedList::append(ListNode* node) {
  if (head_ == nullptr) {
    head_ = node;
    node->prev = nullptr;
  } else {
    tail_->next = node;
    node->prev = tail_;
  }
  tail_ = node;
  node->next = nullptr;
  ++count_;
}

void LinkedList::insertBefore(ListNode* next, ListNode* node) {
  if (next == nullptr) {
    append(node);
    return;
  }
  node->next = next;
  node->prev = next->prev;
  if (next->prev != nullptr) {
    next->prev->next = node;
  } else {
    head_ = node;
  }
  next->prev = node;
  ++count_;
}

void LinkedList::remove(ListNode* node) {
  if (node == head_) {
    head_ = node->next;
    if (head_ != nullptr) {
      head_->prev = nullptr;
    } else {
      tail_ = nullptr;
    }
  } else if (node == tail_) {
    tail_ = node->prev;
    tail_->next = nullptr;
  } else {
    node->prev->next = node->next;
    node->next->prev = node->prev;
  }
  // The item's destructor may observe the list (a body tells the application
  // it is going), so the node is unlinked first and the count follows last.
  delete node->item();
  delete node;
  --count_;
}

void LinkedList::clear() {
  ListNode* node = head_;
  while (node != nullptr) {
    ListNode* next = node->next;
    remove(node);
    node = next;
  }
}
