#include "tests/exgrid/GridTestSupport.h"
