#include "app/commands.h"
#include "foundation/site_mode.h"

namespace kivstore::commands {
namespace {

constexpr int kTextProduct = 29002;
constexpr int kTextNetworkSuffix = 17057;
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
