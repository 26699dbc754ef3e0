// The stored profile: one MIF file, which at every moment is the old or the new one.
#ifndef DEMO_PROFILE_STORE_H
#define DEMO_PROFILE_STORE_H

#include <string>

#include "ProfileFormat.h"

class ProfileStore {
 public:
  explicit ProfileStore(const std::string& directory) : path_(directory + "/profile.mif") {}

  // Empty when there is none, or none that is sound.
  Message load() const;

  // Stores a sound profile for good: after a power cut it is still there.  False with
  // errno set; the old one is then still in place.
  bool save(Bytes profile) const;

 private:
  std::string path_;
};

#endif
