#include "platform/resources.h"

namespace kivstore {

ModuleHandle gModuleHandle = nullptr;

}  // namespace kivstore
