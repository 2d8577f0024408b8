#pragma once

namespace tamzo::testing {

// Where the tests find what they read and run. Told to one file alone, so that all others compile
// alike in every checkout.
extern const char* const kCommand;
extern const char* const kDocs;
extern const char* const kFuzzSeeds;
extern const char* const kTestData;

}  // namespace tamzo::testing
