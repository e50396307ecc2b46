#include "app/LocalizationManager.h"
