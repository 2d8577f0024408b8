// Where the system tells no call stack, there is none.

#include "tamzo/sdk/TamzoLogger.h"

int main() { return tamzo::TamzoLogger::callStackSymbols().empty() ? 0 : 1; }
