#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

// The scripts that set up, build and check the project.
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

const fs::path project = QV_SOURCE_DIR;

class project_tools : public testing::Test {
 protected:
  void write(const std::string& path, const std::string& content, bool program = false) {
    fs::create_directories((place_.path() / path).parent_path());
    std::ofstream(place_.path() / path, std::ios::binary) << content;
    if (program) fs::permissions(place_.path() / path, fs::perms::owner_all);
  }
  std::string quoted(const std::string& path) const {
    return "'" + (place_.path() / path).string() + "'";
  }
  qv_program_run check_includes() {
    return qv_run_shell((project / "tools/check_includes").string() + " " + quoted(""));
  }
  // A copy of the scripts with two packages, of which `installed` are there, and with programs of
  // our own in the place of the system's: the package manager writes down that it was called.
  qv_program_run run_with_packages(const std::string& installed, const std::string& fetch) {
    for (const char* name : {"run", "tools/setup.bash"}) {
      fs::create_directories(place_.path() / "tools");
      fs::copy_file(project / name, place_.path() / name, fs::copy_options::overwrite_existing);
    }
    write("packages.txt", "# remark\nlibone-dev   # why\n\nlibtwo-dev\n");
    write("bin/dpkg-query", "#!/bin/sh\nprintf '" + installed + "'\n", true);
    write("bin/apt-get", "#!/bin/sh\necho \"$@\" >> " + quoted("calls") + "\n" + fetch + "\n",
          true);
    write("bin/sudo", "#!/bin/sh\nexec \"$@\"\n", true);
    write("bin/cmake", "#!/bin/sh\nexit 0\n", true);
    write("build/release/build.ninja", "");
    write("build/release/bin/qv", "#!/bin/sh\necho \"qv got $*\"\n", true);
    return qv_run_shell("cd / && PATH=" + quoted("bin") + ":$PATH " + quoted("run") +
                        " info model");
  }
  std::string calls() {
    return fs::exists(place_.path() / "calls") ? qv_file_content(place_.path() / "calls") : "";
  }
  qv_temporary_folder place_;
};

TEST_F(project_tools, explain_themselves) {
  for (const char* name : {"run", "test"}) {
    const auto run = qv_run_shell((project / name).string() + " --help");
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_THAT(run.output, HasSubstr(std::string("usage: ./") + name));
    EXPECT_EQ(run.errors, "");
  }
}

TEST_F(project_tools, call_no_package_manager_when_all_is_installed) {
  const auto run = run_with_packages("installed libone-dev\\ninstalled libtwo-dev\\n", "");
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_EQ(run.output, "qv got info model\n");
  EXPECT_THAT(run.errors, HasSubstr("packages: all installed"));
  EXPECT_EQ(calls(), "");
}

TEST_F(project_tools, install_only_what_is_missing) {
  const auto run = run_with_packages("installed libone-dev\\nnot-installed libtwo-dev\\n", "");
  EXPECT_THAT(calls(), HasSubstr("update\n"));
  EXPECT_THAT(calls(), HasSubstr("libtwo-dev"));
  EXPECT_THAT(calls(), Not(HasSubstr("libone-dev")));
  // The package manager of this test installs nothing, which must not go unnoticed.
  EXPECT_NE(run.exit_code, 0);
  EXPECT_THAT(run.errors, HasSubstr("still missing after the installation: libtwo-dev"));
}

TEST_F(project_tools, say_what_is_missing_when_there_is_no_network) {
  const auto run = run_with_packages("installed libone-dev\\n", "exit 100");
  EXPECT_NE(run.exit_code, 0);
  EXPECT_THAT(run.errors, HasSubstr("the package lists cannot be fetched"));
  EXPECT_THAT(run.errors, HasSubstr("missing: libtwo-dev"));
  EXPECT_EQ(run.output, "");
}

TEST_F(project_tools, accept_includes_that_follow_the_arrows) {
  write("host/utilities/a.cpp", "#include <geos_c.h>\n#include <vector>\n");
  write("host/core/light/b.cpp", "#include <embree3/rtcore.h>\n#include \"utilities/a.h\"\n");
  write("bim/envelope/c.h", "#include <memory>\n#include \"core/items/b.h\"\n");
  write("app/study/d.cpp", "#include <fmt/format.h>\n#include \"bim/envelope/c.h\"\n");
  const auto run = check_includes();
  EXPECT_EQ(run.exit_code, 0) << run.output;
  EXPECT_THAT(run.output, HasSubstr("4 files, 0 offences"));
}

TEST_F(project_tools, refuse_each_include_against_the_arrows) {
  struct offence {
    std::string path, line, told;
  };
  const offence offences[] = {
      {"host/utilities/a.h", "#include \"core/items/b.h\"", "utilities must not know core"},
      {"host/core/items/b.cpp", "#include \"bim/c.h\"", "core must not know bim"},
      {"bim/c.cpp", "  #  include \"app/study/d.h\"", "bim must not know app"},
      {"bim/c.h", "#include <mutex>", "takes no lock"},
      {"bim/c.cpp", "#include <fmt/format.h>", "belongs to app"},
      {"bim/c.h", "#include <GL/gl.h>", "source files only"},
      {"host/core/items/b.cpp", "#include <embree3/rtcore.h>", "belongs to host/core/light"},
      {"host/utilities/a.h", "#include <geos_c.h>", "source files only"},
      {"app/report/d.cpp", "#include <pugixml.hpp>", "belongs to app/readers"},
      {"app/report/d.cpp", "#include <boost/any.hpp>", "nobody owns"},
      {"app/report/d.cpp", "#include \"d.h\"", "begins at the room"},
      {"app/report/d.cpp", "#include <bim/c.h>", "stand in quotes"},
  };
  for (const offence& planted : offences) {
    SCOPED_TRACE(planted.path + ": " + planted.line);
    write(planted.path, "#include <vector>\n" + planted.line + "\n");
    const auto run = check_includes();
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.output, HasSubstr(planted.path + ":2: "));
    EXPECT_THAT(run.output, HasSubstr(planted.told));
    fs::remove(place_.path() / planted.path);
  }
}

}  // namespace
