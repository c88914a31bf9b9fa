#pragma once

// Everything that the server and a driver plug-in share.

#include "host/column.h"
#include "host/connection.h"
#include "host/connection2.h"
#include "host/data_service.h"
#include "host/database_metadata.h"
#include "host/db_error.h"
#include "host/db_error2.h"
#include "host/driver.h"
#include "host/intl.h"
#include "host/log_service_impl.h"
#include "host/parameter.h"
#include "host/prepared_statement.h"
#include "host/record_type.h"
#include "host/result_code.h"
#include "host/result_set.h"
#include "host/row.h"
#include "host/row_descriptor.h"
#include "host/row_internal2.h"
#include "host/statement.h"
