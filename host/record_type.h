#pragma once

namespace KORVEX::Zel::DB {

// The server's description of a record; drivers only pass it through.
class RecordType;

}  // namespace KORVEX::Zel::DB
