#include "in_memory_databases.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace quenlar {

// What SQLite keeps of an open file. It begins with SQLite's own part.
struct InMemoryDatabases::OpenFile {
  sqlite3_file base;
  InMemoryDatabases* owner;
  std::string path;
};

// The functions that SQLite calls. Each stands for the system, so that memory that fails in one is the system's
// failure.
struct InMemoryDatabases::Calls {
  static OpenFile& Of(sqlite3_file* file) { return *reinterpret_cast<OpenFile*>(file); }
  static InMemoryDatabases& Of(sqlite3_vfs* system) { return *static_cast<InMemoryDatabases*>(system->pAppData); }
  template <typename Act>
  static int Guarded(Act act) {
    try {
      return act();
    } catch (const std::bad_alloc&) {
      return SQLITE_IOERR_NOMEM;
    }
  }
  static int Counted(sqlite3_file* file, const char* what, int code) {
    return Guarded([&] { return Of(file).owner->Count(what, Of(file).path, code); });
  }
  static std::string& Bytes(sqlite3_file* file) { return Of(file).owner->files_.files_[Of(file).path]; }

  // --- One file ---

  static int Close(sqlite3_file* file) {
    Of(file).~OpenFile();
    return SQLITE_OK;
  }
  static int Read(sqlite3_file* file, void* buffer, int size, sqlite3_int64 at) {
    if (const int failed = Counted(file, "read", SQLITE_IOERR_READ); failed != SQLITE_OK) return failed;
    const std::string& bytes = Bytes(file);
    const auto from = std::min(static_cast<std::size_t>(at), bytes.size());
    const std::size_t got = bytes.copy(static_cast<char*>(buffer), static_cast<std::size_t>(size), from);
    std::memset(static_cast<char*>(buffer) + got, 0, static_cast<std::size_t>(size) - got);
    return got == static_cast<std::size_t>(size) ? SQLITE_OK : SQLITE_IOERR_SHORT_READ;
  }
  static int Write(sqlite3_file* file, const void* bytes, int size, sqlite3_int64 at) {
    if (const int failed = Counted(file, "write", SQLITE_IOERR_WRITE); failed != SQLITE_OK) return failed;
    return Guarded([&] {
      return Of(file).owner->Write(Of(file).path, bytes, static_cast<std::size_t>(size), static_cast<std::size_t>(at));
    });
  }
  static int Truncate(sqlite3_file* file, sqlite3_int64 size) {
    if (const int failed = Counted(file, "truncate", SQLITE_IOERR_TRUNCATE); failed != SQLITE_OK) return failed;
    return Guarded([&] {
      Bytes(file).resize(static_cast<std::size_t>(size));
      return SQLITE_OK;
    });
  }
  static int Sync(sqlite3_file* file, int) { return Counted(file, "sync", SQLITE_IOERR_FSYNC); }
  static int FileSize(sqlite3_file* file, sqlite3_int64* size) {
    *size = static_cast<sqlite3_int64>(Bytes(file).size());
    return Counted(file, "size", SQLITE_IOERR_FSTAT);
  }
  static int Lock(sqlite3_file* file, int) {
    return Guarded([&] { return Of(file).owner->CountLock(Of(file).path, SQLITE_IOERR_LOCK); });
  }
  static int Unlock(sqlite3_file*, int) { return SQLITE_OK; }
  static int CheckReservedLock(sqlite3_file* file, int* held) {
    *held = 0;
    return Counted(file, "look for a lock", SQLITE_IOERR_CHECKRESERVEDLOCK);
  }
  static int FileControl(sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; }
  static int SectorSize(sqlite3_file*) { return 4096; }
  static int DeviceCharacteristics(sqlite3_file*) { return SQLITE_IOCAP_POWERSAFE_OVERWRITE; }

  static int ShmMap(sqlite3_file* file, int region, int size, int extend, void volatile** memory) {
    *memory = nullptr;
    if (const int failed = Counted(file, "share memory", SQLITE_IOERR_SHMMAP); failed != SQLITE_OK) return failed;
    return Guarded([&] {
      if (!Of(file).owner->files_.CheckPlace(Of(file).path + "-shm").ok()) return SQLITE_CANTOPEN;
      auto& regions = Of(file).owner->shared_memory_[Of(file).path];
      const auto wanted = static_cast<std::size_t>(region) + 1;
      while (extend != 0 && regions.size() < wanted) {
        regions.push_back(std::make_unique<char[]>(static_cast<std::size_t>(size)));
      }
      if (regions.size() >= wanted) *memory = regions[wanted - 1].get();
      return SQLITE_OK;
    });
  }
  static int ShmLock(sqlite3_file* file, int, int, int flags) {
    if ((flags & SQLITE_SHM_LOCK) == 0) return SQLITE_OK;
    return Guarded([&] { return Of(file).owner->CountLock(Of(file).path, SQLITE_IOERR_SHMLOCK); });
  }
  static void ShmBarrier(sqlite3_file*) {}
  // The last connection takes the shared memory with it, as it does where another process is killed.
  static int ShmUnmap(sqlite3_file* file, int) {
    Of(file).owner->shared_memory_.erase(Of(file).path);
    return SQLITE_OK;
  }

  // --- The files ---

  static int Open(sqlite3_vfs* system, const char* name, sqlite3_file* file, int flags, int* out_flags) {
    file->pMethods = nullptr;
    return Guarded([&] {
      InMemoryDatabases& owner = Of(system);
      std::string path = name == nullptr ? "/temporary" : name;
      if (const int failed = owner.Count("open", path, SQLITE_CANTOPEN); failed != SQLITE_OK) return failed;
      const bool is_there = owner.files_.FileExists(path);
      const Status place = owner.files_.CheckPlace(path);
      if (!is_there && ((flags & SQLITE_OPEN_CREATE) == 0 || !place.ok())) {
        return place.kind() == StatusKind::kDenied ? SQLITE_READONLY_DIRECTORY : SQLITE_CANTOPEN;
      }
      if (is_there && !place.ok()) flags = (flags & ~SQLITE_OPEN_READWRITE) | SQLITE_OPEN_READONLY;
      owner.files_.files_[path];
      OpenFile* const opened = new (file) OpenFile{{}, &owner, std::move(path)};
      opened->base.pMethods = Methods();
      if (out_flags != nullptr) *out_flags = flags;
      return SQLITE_OK;
    });
  }
  static int Delete(sqlite3_vfs* system, const char* path, int) {
    return Guarded([&] {
      const int failed = Of(system).Count("delete", path, SQLITE_IOERR_DELETE);
      if (failed != SQLITE_OK) return failed;
      return Of(system).files_.files_.erase(path) == 0 ? SQLITE_IOERR_DELETE_NOENT : SQLITE_OK;
    });
  }
  static int Access(sqlite3_vfs* system, const char* path, int, int* yes) {
    return Guarded([&] {
      const auto found = Of(system).files_.files_.find(path);
      *yes = found != Of(system).files_.files_.end() && !found->second.empty() ? 1 : 0;
      return Of(system).Count("look for", path, SQLITE_IOERR_ACCESS);
    });
  }
  static int FullPathname(sqlite3_vfs*, const char* path, int size, char* full) {
    sqlite3_snprintf(size, full, "%s", path);
    return SQLITE_OK;
  }
  static int Randomness(sqlite3_vfs*, int size, char* bytes) {
    std::memset(bytes, 7, static_cast<std::size_t>(size));
    return size;
  }
  static int Sleep(sqlite3_vfs*, int microseconds) { return microseconds; }  // the time jumps
  static int CurrentTime(sqlite3_vfs*, double* days) {
    *days = 2'460'000.5;
    return SQLITE_OK;
  }
  static int GetLastError(sqlite3_vfs*, int, char*) { return 0; }

  static const sqlite3_io_methods* Methods() {
    static const sqlite3_io_methods methods = {2,
                                               Close,
                                               Read,
                                               Write,
                                               Truncate,
                                               Sync,
                                               FileSize,
                                               Lock,
                                               Unlock,
                                               CheckReservedLock,
                                               FileControl,
                                               SectorSize,
                                               DeviceCharacteristics,
                                               ShmMap,
                                               ShmLock,
                                               ShmBarrier,
                                               ShmUnmap,
                                               nullptr,
                                               nullptr};
    return &methods;
  }
};

InMemoryDatabases::InMemoryDatabases(InMemoryFiles& files)
    : files_(files), name_("in memory " + std::to_string(reinterpret_cast<std::uintptr_t>(this))) {
  system_.iVersion = 1;
  system_.szOsFile = sizeof(OpenFile);
  system_.mxPathname = 512;
  system_.zName = name_.c_str();
  system_.pAppData = this;
  system_.xOpen = Calls::Open;
  system_.xDelete = Calls::Delete;
  system_.xAccess = Calls::Access;
  system_.xFullPathname = Calls::FullPathname;
  system_.xRandomness = Calls::Randomness;
  system_.xSleep = Calls::Sleep;
  system_.xCurrentTime = Calls::CurrentTime;
  system_.xGetLastError = Calls::GetLastError;
  sqlite3_vfs_register(&system_, 1);
}

InMemoryDatabases::~InMemoryDatabases() { sqlite3_vfs_unregister(&system_); }

int InMemoryDatabases::Count(const char* what, const std::string& path, int code) const {
  switch (files_.CountCall(what, path).kind()) {
    case StatusKind::kOk:
      return SQLITE_OK;
    case StatusKind::kFull:
      return code == SQLITE_IOERR_WRITE ? SQLITE_FULL : code;
    default:
      return code;
  }
}

int InMemoryDatabases::CountLock(const std::string& path, int code) {
  if (++locks_ >= held_from_ && held_from_ > 0) return SQLITE_BUSY;
  return Count("lock", path, code);
}

// As much as the disk has room for.
int InMemoryDatabases::Write(const std::string& path, const void* bytes, std::size_t size, std::size_t at) {
  std::string& file = files_.files_[path];
  const std::size_t wanted = std::max(file.size(), at + size);
  std::size_t grown = wanted;
  if (files_.free_space_) {
    grown = std::min<std::size_t>(wanted, file.size() + *files_.free_space_);
    *files_.free_space_ -= grown - file.size();
  }
  file.resize(grown);
  if (grown > at) std::memcpy(file.data() + at, bytes, std::min(size, grown - at));
  return grown == wanted ? SQLITE_OK : SQLITE_FULL;
}

}  // namespace quenlar
