#pragma once

#include "zeldb/doctor_patient.h"
#include "zeldb/finding.h"

// Steps of an examination that log in and run statements. They use a temporary table and leave
// nothing behind.
namespace zeldb {

// The plug-in's library can be loaded.
Finding checkPlugIn(DoctorPatient& patient);
// A connection of the generation can be opened. Leaves its session.
Finding checkLogin1(DoctorPatient& patient);
Finding checkLogin2(DoctorPatient& patient);
// A statement without parameters runs, in every session.
Finding checkStatement(DoctorPatient& patient);
// The driver describes parameters. Needs both sessions, and closes the second when it does not.
Finding checkParameters(DoctorPatient& patient);
// A temporary table can be made in every session.
Finding checkScratchTable(DoctorPatient& patient);
// Values come back as they were sent, in every session.
Finding checkText(DoctorPatient& patient);
Finding checkNull(DoctorPatient& patient);
Finding checkDecimal(DoctorPatient& patient);
Finding checkMicroseconds(DoctorPatient& patient);
// Rows can be sent together.
Finding checkBatch(DoctorPatient& patient);
// A batch with a bad row is refused, and can be undone.
Finding checkBadRow(DoctorPatient& patient);

}  // namespace zeldb
