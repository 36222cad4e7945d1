#include "app/commands.h"
#include "foundation/site_mode.h"
#include "platform/text_numbers.h"

namespace kivstore::commands {
namespace {

constexpr uint16_t kProductGeneration = 3;

}  // namespace

bool ProductId(SGeneralParams& params) {
  SString id = SString::FromResource(kTextProduct);
  if (IsSharedSite()) {
    id += SString::FromResource(kTextNetworkSuffix);
  }
  ReturnText(params, params.productId, params.productIdSize, id);
  params.productGeneration = kProductGeneration;
  return true;
}

}  // namespace kivstore::commands
