#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/linked_list.h"
#include "test_support.h"
#include "tests/case_names.h"

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

// The items' numbers from head to tail by the next links, and again by the
// prev links from the tail.
std::vector<int> ids(const LinkedList& list, bool backward = false) {
  std::vector<int> out;
  for (ListNode* n = backward ? list.tail() : list.head(); n != nullptr;
       n = backward ? n->prev : n->next)
    out.insert(backward ? out.begin() : out.end(), static_cast<Tracked*>(n->item())->id());
  return out;
}

struct RemoveCase {
  int size;
  int index;
  std::vector<int> remaining;
};

class LinkedListRemove : public ::testing::TestWithParam<RemoveCase> {};

TEST_P(LinkedListRemove, UnlinksDeletesAndKeepsBothDirectionsConsistent) {
  std::vector<int> deleted;
  LinkedList list;
  for (int i = 0; i < GetParam().size; ++i)
    list.append(new ListNode(new Tracked(i, deleted)));
  ListNode* n = list.head();
  for (int i = 0; i < GetParam().index; ++i)
    n = n->next;
  list.remove(n);
  EXPECT_EQ(deleted, std::vector<int>{GetParam().index});
  EXPECT_EQ(list.count(), GetParam().size - 1);
  EXPECT_EQ(ids(list), GetParam().remaining);
  EXPECT_EQ(ids(list, true), GetParam().remaining);
  EXPECT_EQ(list.head() == nullptr, list.tail() == nullptr);
}

INSTANTIATE_TEST_SUITE_P(HeadMiddleTail, LinkedListRemove,
                         ::testing::Values(RemoveCase{1, 0, {}}, RemoveCase{2, 1, {0}},
                                           RemoveCase{3, 0, {1, 2}}, RemoveCase{3, 1, {0, 2}},
                                           RemoveCase{3, 2, {0, 1}},
                                           RemoveCase{5, 3, {0, 1, 2, 4}}),
                         caseNames({"OnlyItem", "TailOfTwo", "HeadOfThree", "MiddleOfThree",
                                    "TailOfThree", "FourthOfFive"}));

TEST(LinkedList, InsertBeforeKeepsBothDirectionsConsistent) {
  std::vector<int> log;
  LinkedList list;
  list.insertBefore(nullptr, new ListNode(new Tracked(2, log)));
  list.insertBefore(list.head(), new ListNode(new Tracked(0, log)));
  list.insertBefore(nullptr, new ListNode(new Tracked(3, log)));
  list.insertBefore(list.head()->next, new ListNode(new Tracked(1, log)));
  EXPECT_EQ(ids(list), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(ids(list, true), (std::vector<int>{0, 1, 2, 3}));
  EXPECT_EQ(list.count(), 4);
}

TEST(LinkedList, DestroyingAListOfBodiesNotifiesEachInListOrder) {
  RecordingObserver observer;
  {
    World world;
    for (int i = 0; i < 3; ++i)
      world.createBody();
    observer.events.clear();
  }
  std::vector<std::string> deleted;
  for (const RecordingObserver::Event& e : observer.events)
    deleted.push_back(e.created ? "created" : e.name);
  EXPECT_EQ(deleted, (std::vector<std::string>{"Body 0", "Body 1", "Body 2"}));
}

}  // namespace
