#ifndef TAMZO_TESTS_SUPPORT_EXPECT_IN_C_H
#define TAMZO_TESTS_SUPPORT_EXPECT_IN_C_H

/* Expectations of a test program in C, which has one source and ends with outcome(). */

#include <stdio.h>
#include <stdlib.h>

static int failures = 0;

/* Says where a condition does not hold, and goes on. */
#define EXPECT(condition)                                                     \
  do {                                                                        \
    if (!(condition)) {                                                       \
      fprintf(stderr, "%s:%d: not so: %s\n", __FILE__, __LINE__, #condition); \
      ++failures;                                                             \
    }                                                                         \
  } while (0)

/* The exit status of the program. */
static int outcome(void) {
  if (failures == 0) puts("as it should be");
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}

#endif
