#include "App/ICustomizationManager.h"
