#include "platform/caller_lock.h"

#include <pthread.h>

namespace kivstore {
namespace {

pthread_mutex_t gCallers = PTHREAD_MUTEX_INITIALIZER;

}  // namespace

SCallerLock::SCallerLock() {
  pthread_mutex_lock(&gCallers);
}

SCallerLock::~SCallerLock() {
  pthread_mutex_unlock(&gCallers);
}

}  // namespace kivstore
