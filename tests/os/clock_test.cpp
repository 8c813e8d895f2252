#include <gtest/gtest.h>
TEST(Clock, Placeholder) {}
