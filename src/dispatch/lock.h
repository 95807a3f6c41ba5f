// Locks without a C++ run-time: held for a look or a copy, never across a pause.
#pragma once

#include <pthread.h>

/// Holds a mutex for a scope.
class MutexLock {
 public:
  explicit MutexLock(pthread_mutex_t& mutex) : mutex_(mutex) { pthread_mutex_lock(&mutex_); }
  ~MutexLock() { pthread_mutex_unlock(&mutex_); }
  MutexLock(const MutexLock&) = delete;
  MutexLock& operator=(const MutexLock&) = delete;

 private:
  pthread_mutex_t& mutex_;
};

/// Holds a lock that many readers share.
class SharedLock {
 public:
  explicit SharedLock(pthread_rwlock_t& lock) : lock_(lock) { pthread_rwlock_rdlock(&lock_); }
  ~SharedLock() { pthread_rwlock_unlock(&lock_); }
  SharedLock(const SharedLock&) = delete;
  SharedLock& operator=(const SharedLock&) = delete;

 private:
  pthread_rwlock_t& lock_;
};

/// Holds it alone.
class ExclusiveLock {
 public:
  explicit ExclusiveLock(pthread_rwlock_t& lock) : lock_(lock) { pthread_rwlock_wrlock(&lock_); }
  ~ExclusiveLock() { pthread_rwlock_unlock(&lock_); }
  ExclusiveLock(const ExclusiveLock&) = delete;
  ExclusiveLock& operator=(const ExclusiveLock&) = delete;

 private:
  pthread_rwlock_t& lock_;
};
