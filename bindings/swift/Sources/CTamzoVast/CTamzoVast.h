#include <tamzo/tamzo_vast.h>
