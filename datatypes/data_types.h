#pragma once

// The value library: type codes, value cells, conversions, time, pictures and fixed decimals.

#include "datatypes/data_value.h"
