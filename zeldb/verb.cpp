#include "zeldb/verb.h"

#include "zeldb/check_verb.h"
#include "zeldb/complete_verb.h"
#include "zeldb/copy_verb.h"
#include "zeldb/describe_verb.h"
#include "zeldb/doctor_verb.h"
#include "zeldb/dump_verb.h"
#include "zeldb/load_verb.h"
#include "zeldb/query_verb.h"
#include "zeldb/tables_verb.h"

namespace zeldb {

std::vector<std::unique_ptr<Verb>> makeVerbs() {
  std::vector<std::unique_ptr<Verb>> verbs;
  verbs.push_back(std::make_unique<CheckVerb>());
  verbs.push_back(std::make_unique<DoctorVerb>());
  verbs.push_back(std::make_unique<TablesVerb>());
  verbs.push_back(std::make_unique<DescribeVerb>());
  verbs.push_back(std::make_unique<QueryVerb>());
  verbs.push_back(std::make_unique<LoadVerb>());
  verbs.push_back(std::make_unique<DumpVerb>());
  verbs.push_back(std::make_unique<CopyVerb>());
  verbs.push_back(std::make_unique<CompleteVerb>());
  return verbs;
}

}  // namespace zeldb
