#include "base/sub_array.h"

#include <gtest/gtest.h>

#include <numeric>

#include "base/tuple.h"
#include "support/log_capture.h"

namespace {

class SUB_ARRAY_OF_TEN : public testing::Test {
 protected:
  SUB_ARRAY_OF_TEN() {
    source_.Create({-2, 10});
    std::iota(source_.Pointer(0), source_.Pointer(0) + 10, -2);
  }

  LOG_CAPTURE log_;
  ARRAY<int> source_;
};

TEST_F(SUB_ARRAY_OF_TEN, ViewsAPartByTheIndicesOfTheSource) {
  SUB_ARRAY<int> view;
  view.Link(source_, {3, 4});
  EXPECT_TRUE(view.Range() == RANGE<int>(3, 4));
  for (int i = 3; i <= view.Last(); ++i) {
    EXPECT_EQ(view.Origin()[i], i);
  }
  view.Origin()[3] = 33;
  EXPECT_EQ(source_.Origin()[3], 33);

  view.SetFirst(100);
  EXPECT_TRUE(view.Range() == RANGE<int>(100, 4));
  EXPECT_EQ(&view.Origin()[100], &source_.Origin()[3]);

  const SUB_ARRAY<int> second(view);
  EXPECT_EQ(second.Origin(), view.Origin());
  EXPECT_EQ(second.Last(), 103);
}

TEST_F(SUB_ARRAY_OF_TEN, OwnsNothing) {
  SUB_ARRAY<int> view;
  view.Link(source_, source_.Range());
  view.Free();
  EXPECT_EQ(view.Size(), 0);
  EXPECT_EQ(view.Origin(), nullptr);
  { SUB_ARRAY<int>().Link(source_, {0, 1}); }
  EXPECT_EQ(source_.Origin()[7], 7);
}

TEST_F(SUB_ARRAY_OF_TEN, PartMustLieInTheSource) {
  const RANGE<int> inside[] = {{-2, 10}, {-2, 0}, {8, 0}, {7, 1}};
  const RANGE<int> outside[] = {{-3, 2},      {7, 2},       {0, -1},           {-2, 11},
                                {0, INT_MAX}, {INT_MIN, 1}, {INT_MAX, INT_MAX}};
  SUB_ARRAY<int> view;
  for (const RANGE<int>& part : inside) {
    view.Link(source_, part);
    EXPECT_TRUE(view.Range() == part);
  }
  for (const RANGE<int>& part : outside) {
    EXPECT_THROW(view.Link(source_, part), ERROR_ARGUMENT) << part.First();
  }
  EXPECT_TRUE(log_.Has("ALARM : SUB_ARRAY: a view can not leave its array")) << log_.Text();
}

TEST_F(SUB_ARRAY_OF_TEN, CanNeitherBeAssignedNorAllocate) {
  SUB_ARRAY<int> view;
  SUB_ARRAY<int> other;
  view.Link(source_, {0, 2});
  EXPECT_THROW(other = view, ERROR_NOT_IMPLEMENTED);
  EXPECT_EQ(log_.Lines(),
            std::vector<std::string>{
                "ALARM : never call: SUB_ARRAY<T>::operator=( const SUB_ARRAY< T >& )"});
  ARRAY<int>& array = view;
  EXPECT_THROW(array.Create({0, 1}), ERROR_NOT_IMPLEMENTED);
  EXPECT_THROW(array.CreateRaw({0, 1}), ERROR_NOT_IMPLEMENTED);
  EXPECT_THROW(array.Resize({0, 1}), ERROR_NOT_IMPLEMENTED);
  EXPECT_EQ(view.Size(), 2);
}

}  // namespace
