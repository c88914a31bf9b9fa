#pragma once

// The value library: type codes, value cells, conversions, time, pictures and fixed decimals. It
// never throws, logs nothing, and keeps no state but its settings and a cache of time zones a
// thread.

#include "datatypes/calendar.h"
#include "datatypes/cast.h"
#include "datatypes/comparisons.h"
#include "datatypes/conversions.h"
#include "datatypes/data_value.h"
#include "datatypes/decimals.h"
#include "datatypes/hex.h"
#include "datatypes/long_division.h"
#include "datatypes/picture_text.h"
#include "datatypes/settings.h"
#include "datatypes/time_text.h"
#include "datatypes/time_unit.h"
#include "datatypes/time_zones.h"
#include "datatypes/type_promotion.h"
#include "datatypes/type_table.h"
#include "datatypes/types.h"
