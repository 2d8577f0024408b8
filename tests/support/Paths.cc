#include "tests/support/Paths.h"

namespace tamzo::testing {

const char* const kCommand = TAMZO_COMMAND;
const char* const kDocs = TAMZO_DOCS;
const char* const kFuzzSeeds = TAMZO_FUZZ_SEEDS;
const char* const kTestData = TAMZO_TEST_DATA;

}  // namespace tamzo::testing
