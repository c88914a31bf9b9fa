#pragma once

#include "zeldb/doctor_patient.h"
#include "zeldb/finding.h"

namespace zeldb {

// A step of an examination: the database's server answers, or its file can be used, as far as that
// can be told without the driver.
Finding checkReach(DoctorPatient& patient);

}  // namespace zeldb
