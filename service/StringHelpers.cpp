#include "service/StringHelpers.h"
