// What src/precompiled.h has, and the headers of the test packages.
#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "precompiled.h"
