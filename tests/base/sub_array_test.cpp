#include "base/sub_array.h"

#include <gtest/gtest.h>

#include "support/log_capture.h"

namespace {

TEST(SUB_ARRAY, ViewsAPartOfItsSourceAndOwnsNothing) {
  const LOG_CAPTURE log;
  ARRAY<int> source;
  source.Create({-2, 10});
  SUB_ARRAY<int> view;
  for (const RANGE<int>& part : {RANGE<int>(-2, 10), RANGE<int>(8, 0), RANGE<int>(7, 1)}) {
    view.Link(source, part);
    EXPECT_TRUE(view.Range() == part);
  }
  view.SetFirst(100);
  const SUB_ARRAY<int> second(view);
  EXPECT_EQ(&second.Origin()[100], &source.Origin()[7]);
  const RANGE<int> outside[] = {{-3, 2}, {7, 2}, {0, -1}, {0, INT_MAX}, {INT_MAX, INT_MAX}};
  for (const RANGE<int>& part : outside) {
    EXPECT_THROW(view.Link(source, part), ERROR_ARGUMENT) << part.First();
  }
  EXPECT_TRUE(log.Has("ALARM : SUB_ARRAY: a view can not leave its array")) << log.Text();
  EXPECT_THROW(SUB_ARRAY<int>() = view, ERROR_NOT_IMPLEMENTED);
  EXPECT_TRUE(log.Has("ALARM : never call: SUB_ARRAY<T>::operator=( const SUB_ARRAY< T >& )"));
  EXPECT_THROW(view.Create({0, 1}), ERROR_NOT_IMPLEMENTED);
  EXPECT_THROW(view.CreateRaw({0, 1}), ERROR_NOT_IMPLEMENTED);
  EXPECT_THROW(view.Resize({0, 1}), ERROR_NOT_IMPLEMENTED);
}

}  // namespace
