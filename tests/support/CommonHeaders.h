// What most tests read; see cmake/CommonHeaders.h.
#pragma once

#include "../../cmake/CommonHeaders.h"
#include <gmock/gmock.h>
#include <gtest/gtest.h>
