#include "support/Log.h"
