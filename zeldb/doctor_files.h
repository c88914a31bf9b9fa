#pragma once

#include "zeldb/doctor_patient.h"
#include "zeldb/finding.h"

// Steps of an examination that look at files only.
namespace zeldb {

// The services file can be read.
Finding checkServicesFile(DoctorPatient& patient);
// Nobody else can read it, or a password file, when there are passwords in it.
Finding checkPermissions(DoctorPatient& patient);
// It has the service, with keys that make sense. Leaves the service.
Finding checkService(DoctorPatient& patient);
// The driver manager's files.
Finding checkDriverList(DoctorPatient& patient);
Finding checkSourceLists(DoctorPatient& patient);
// One of them has the service's data source. Leaves the source and the kind of driver.
Finding checkDataSource(DoctorPatient& patient);
// The data source's driver is a library for this machine that loads.
Finding checkDriver(DoctorPatient& patient);
// Keys of the data source and the driver are as they should be.
Finding checkSettings(DoctorPatient& patient);

}  // namespace zeldb
