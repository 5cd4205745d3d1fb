#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "com/counted.h"
#include "com/object.h"
#include "common/automation_object.h"
#include "tests/fakes/raised_by.h"

namespace beacon::com {

using test::RaisedBy;

}  // namespace beacon::com
