// Lines from arguments, from a file or from standard input.
#include "tools/qrysh/prompt/line_source.h"

#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <iostream>
#include <sstream>
#include <system_error>

#include "tools/text/text.h"

namespace qrysh {

namespace {

class stream_lines : public line_source {
  public:
    explicit stream_lines(std::istream &stream, std::string name) : stream_(stream), name_(std::move(name)) {}

    std::optional<std::string> next() override {
        std::string line;
        errno = 0;
        if (std::getline(stream_, line)) {
            ++number_;
            constexpr std::string_view byte_order_mark = "\xEF\xBB\xBF";
            if (number_ == 1 && line.compare(0, byte_order_mark.size(), byte_order_mark) == 0) {
                line.erase(0, byte_order_mark.size());
            }
            return line;
        }
        if (stream_.bad()) {
            throw std::system_error(errno, std::generic_category(), name_);
        }
        return std::nullopt;
    }

    std::string place() const override { return name_ + ':' + std::to_string(number_); }

  private:
    std::istream &stream_;
    std::string name_;
    std::size_t number_ = 0;
};

class argument_lines : public line_source {
  public:
    explicit argument_lines(const std::string &argument) : text_(argument), lines_(text_, "argument") {}

    std::optional<std::string> next() override { return lines_.next(); }

  private:
    std::istringstream text_;
    stream_lines lines_;
};

class file_lines : public line_source {
  public:
    explicit file_lines(const std::string &path) : path_(path), file_(path), lines_(file_, printable(path)) {
        if (!file_) {
            throw std::system_error(errno, std::generic_category(), path);
        }
        file_.exceptions(std::ios::badbit); // a folder opens, but cannot be read
    }

    std::optional<std::string> next() override {
        try {
            return lines_.next();
        } catch (const std::ios_base::failure &error) {
            throw std::system_error(error.code(), path_);
        }
    }
    std::string place() const override { return lines_.place(); }

  private:
    std::string path_;
    std::ifstream file_;
    stream_lines lines_;
};

} // namespace

std::unique_ptr<line_source> open_argument(const std::string &argument) {
    return std::make_unique<argument_lines>(argument);
}

std::unique_ptr<line_source> open_file(const std::string &path) {
    return std::make_unique<file_lines>(path);
}

std::unique_ptr<line_source> open_input(prompt_hooks hooks) {
    if (isatty(STDIN_FILENO) != 0) {
        return open_prompt(std::move(hooks));
    }
    return std::make_unique<stream_lines>(std::cin, "stdin");
}

} // namespace qrysh
