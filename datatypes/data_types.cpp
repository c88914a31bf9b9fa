#include "datatypes/data_types.h"
