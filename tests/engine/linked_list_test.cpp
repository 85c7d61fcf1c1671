#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/linked_list.h"
#include "test_support.h"

namespace {

// Records which items were destroyed, in order.
class Tracked : public ListStorable {
 public:
  Tracked(int id, std::vector<int>& log) : id_(id), log_(log) {}
  ~Tracked() override { log_.push_back(id_); }
  int id() const { return id_; }

 private:
  int id_;
  std::vector<int>& log_;
};

std::vector<int> idsForward(const LinkedList& list) {
  std::vector<int> ids;
  for (ListNode* n = list.head(); n != nullptr; n = n->next) {
    ids.push_back(static_cast<Tracked*>(n->item())->id());
  }
  return ids;
}

std::vector<int> idsBackward(const LinkedList& list) {
  std::vector<int> ids;
  if (list.head() == nullptr)
    return ids;
  for (ListNode* n = list.tail(); n != nullptr; n = n->prev) {
    ids.insert(ids.begin(), static_cast<Tracked*>(n->item())->id());
  }
  return ids;
}

ListNode* nodeAt(const LinkedList& list, int index) {
  ListNode* n = list.head();
  while (index-- > 0)
    n = n->next;
  return n;
}

struct RemoveCase {
  int size;
  int index;
  std::vector<int> remaining;
};

class LinkedListRemove : public ::testing::TestWithParam<RemoveCase> {};

TEST_P(LinkedListRemove, UnlinksDeletesAndKeepsBothDirectionsConsistent) {
  std::vector<int> deleted;
  {
    LinkedList list;
    for (int i = 0; i < GetParam().size; ++i)
      list.append(new ListNode(new Tracked(i, deleted)));
    list.remove(nodeAt(list, GetParam().index));

    EXPECT_EQ(deleted, std::vector<int>{GetParam().index});
    EXPECT_EQ(list.count(), GetParam().size - 1);
    EXPECT_EQ(idsForward(list), GetParam().remaining);
    EXPECT_EQ(idsBackward(list), GetParam().remaining);
    if (list.head() == nullptr) {
      EXPECT_EQ(list.tail(), nullptr);
    } else {
      EXPECT_EQ(list.head()->prev, nullptr);
      EXPECT_EQ(list.tail()->next, nullptr);
    }
  }
}

INSTANTIATE_TEST_SUITE_P(HeadMiddleTail, LinkedListRemove,
                         ::testing::Values(RemoveCase{1, 0, {}}, RemoveCase{2, 1, {0}},
                                           RemoveCase{3, 0, {1, 2}}, RemoveCase{3, 1, {0, 2}},
                                           RemoveCase{3, 2, {0, 1}},
                                           RemoveCase{5, 3, {0, 1, 2, 4}}));

TEST(LinkedList, InsertBeforeKeepsBothDirectionsConsistent) {
  std::vector<int> log;
  LinkedList list;
  list.insertBefore(nullptr, new ListNode(new Tracked(2, log)));
  list.insertBefore(list.head(), new ListNode(new Tracked(0, log)));
  list.insertBefore(nullptr, new ListNode(new Tracked(3, log)));
  list.insertBefore(nodeAt(list, 1), new ListNode(new Tracked(1, log)));
  EXPECT_EQ(idsForward(list), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(idsBackward(list), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(list.count(), 4);
}

TEST(LinkedList, AppendAfterEmptyingMakesTheNodeHeadAndTail) {
  std::vector<int> deleted;
  LinkedList list;
  list.append(new ListNode(new Tracked(1, deleted)));
  list.remove(list.head());
  auto* node = new ListNode(new Tracked(2, deleted));
  list.append(node);
  EXPECT_EQ(list.head(), node);
  EXPECT_EQ(list.tail(), node);
  EXPECT_EQ(node->prev, nullptr);
  EXPECT_EQ(node->next, nullptr);
  EXPECT_EQ(list.count(), 1);
}

TEST(LinkedList, CountIsAppendsMinusRemoves) {
  std::vector<int> deleted;
  LinkedList list;
  for (int i = 0; i < 10; ++i)
    list.append(new ListNode(new Tracked(i, deleted)));
  for (int i = 0; i < 4; ++i)
    list.remove(nodeAt(list, i));
  EXPECT_EQ(list.count(), 6);
  EXPECT_EQ(idsForward(list), (std::vector<int>{1, 3, 5, 7, 8, 9}));
}

TEST(LinkedList, ClearDeletesEveryItemFromHeadToTail) {
  std::vector<int> deleted;
  LinkedList list;
  list.clear();
  EXPECT_TRUE(deleted.empty());
  for (int i = 0; i < 4; ++i)
    list.append(new ListNode(new Tracked(i, deleted)));
  list.clear();
  EXPECT_EQ(deleted, (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(list.count(), 0);
  EXPECT_EQ(list.head(), nullptr);
}

TEST(LinkedList, DestroyingAListOfBodiesNotifiesEachInListOrder) {
  RecordingObserver observer;
  {
    World world;
    world.createBody();
    world.createBody();
    world.createBody();
    observer.events.clear();
  }
  ASSERT_EQ(observer.events.size(), 3u);
  EXPECT_EQ(observer.events[0].name, "Body 0");
  EXPECT_EQ(observer.events[1].name, "Body 1");
  EXPECT_EQ(observer.events[2].name, "Body 2");
  EXPECT_FALSE(observer.events[0].created);
}

}  // namespace
