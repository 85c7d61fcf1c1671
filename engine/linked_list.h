#pragma once

#include <cstdint>

#include "list_storable.h"

// One element of a LinkedList. The list sets the links when the node is
// appended; the node carries its item until the list deletes both.
class ListNode {
 public:
  explicit ListNode(ListStorable* item) : item_(item) {}
  ListNode(const ListNode&) = delete;
  ListNode& operator=(const ListNode&) = delete;

  ListStorable* item() const { return item_; }

  ListNode* prev = nullptr;
  ListNode* next = nullptr;

 private:
  ListStorable* item_;
};

// Doubly linked list that owns its nodes and their items: removing a node
// deletes its item through the virtual destructor. Nothing detaches an item
// without deleting it.
class LinkedList {
 public:
  LinkedList() = default;
  ~LinkedList();
  LinkedList(const LinkedList&) = delete;
  LinkedList& operator=(const LinkedList&) = delete;

  // Links a node (item set, owned from now on) after the tail.
  void append(ListNode* node);
  // Links a node before another node of this list, or after the tail when
  // next is null.
  void insertBefore(ListNode* next, ListNode* node);
  // Unlinks a node of this list and deletes it with its item.
  void remove(ListNode* node);
  // Removes every node from the head to the tail.
  void clear();

  ListNode* head() const { return head_; }
  ListNode* tail() const { return tail_; }
  int32_t count() const { return count_; }

 private:
  ListNode* head_ = nullptr;
  ListNode* tail_ = nullptr;
  int32_t count_ = 0;
};
