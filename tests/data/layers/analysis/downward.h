#pragma once
// Allowed: an analysis uses the base.
#include "base/common.h"
