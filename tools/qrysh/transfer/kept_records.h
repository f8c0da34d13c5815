// Every record set aside, to be put back after a trial.
#pragma once

#include <string>

namespace qrysh {

// Keeps the records in a temporary file, and puts them back at its end. Does nothing unless `needed`. Throws
// std::runtime_error when they cannot be kept or put back.
class kept_records {
  public:
    explicit kept_records(bool needed);
    ~kept_records();
    kept_records(const kept_records &) = delete;
    kept_records &operator=(const kept_records &) = delete;

    void put_back() const;

  private:
    std::string path() const { return folder_ + "/records.json"; }

    std::string folder_; // empty: nothing is kept
};

} // namespace qrysh
