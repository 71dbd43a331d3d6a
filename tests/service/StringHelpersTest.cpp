#include "service/StringHelpers.h"

#include <gtest/gtest.h>
