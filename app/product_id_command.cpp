#include "app/commands.h"
#include "platform/text_numbers.h"

namespace kivstore::commands {
namespace {

constexpr uint16_t kProductGeneration = 3;

}  // namespace

bool ProductId(SGeneralCall& call, SGeneralParams& params) {
  SString id = SString::FromResource(kTextProduct);
  if (call.GetSite().IsShared()) {
    id += SString::FromResource(kTextNetworkSuffix);
  }
  ReturnText(params, params.productId, params.productIdSize, id);
  params.productGeneration = kProductGeneration;
  return true;
}

}  // namespace kivstore::commands
