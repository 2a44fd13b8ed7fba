#include "xf/xf_file.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>

#include "xf_test_files.h"

namespace {
int errno_of_flock = 0;  // what the next locks fail with; 0: they work
}

// Stands in front of the system's, so that a file system without locks can be had.
extern "C" int flock(int descriptor, int operation) noexcept {
  if (errno_of_flock == 0) {
    return static_cast<int>(::syscall(SYS_flock, descriptor, operation));
  }
  errno = errno_of_flock;
  return -1;
}

namespace quillet {
namespace {

class XfFileTest : public XfTest {
 protected:
  ~XfFileTest() override { errno_of_flock = 0; }

  void expect_opens(const std::string& name) {
    XfFile file;
    EXPECT_OK(XF_OPEN_FILE(path(name), file));
    EXPECT_OK(XF_CLOSE_FILE(file));
  }
  void expect_refuses(const std::string& name, const std::string& reason) {
    XfFile file;
    expect_failure(XF_OPEN_FILE(path(name), file), reason);
  }
};

TEST_F(XfFileTest, OpensWithoutLocksWhereThereAreNone) {
  make_file(path("a.xmdf"), [](hid_t) {});
  errno_of_flock = ENOLCK;
  expect_opens("a.xmdf");
  XfFile created;
  EXPECT_OK(XF_CREATE_FILE(path("b.xmdf"), created));
  EXPECT_OK(XF_CLOSE_FILE(created));
  errno_of_flock = EWOULDBLOCK;
  expect_refuses("a.xmdf", "another program is writing it");
}

TEST_F(XfFileTest, KeepsNoLockOnAnInput) {
  make_file(path("a.xmdf"), [](hid_t) {});
  XfFile file;
  ASSERT_OK(XF_OPEN_FILE(path("a.xmdf"), file));
  const int writer = ::open(path("a.xmdf").c_str(), O_RDWR);
  EXPECT_EQ(::flock(writer, LOCK_EX | LOCK_NB), 0);
  ::close(writer);
}

TEST_F(XfFileTest, RefusesWhatIsNoRegularFile) {
  ASSERT_EQ(::mkfifo(path("pipe.xmdf").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/zero", path("device.xmdf"));
  expect_refuses("pipe.xmdf", "Not a regular file");
  expect_refuses("device.xmdf", "Not a regular file");
}

// A writer that dies leaves marks in files of the latest format.
TEST_F(XfFileTest, PassesOnHowToOpenAFileThatItsWriterLeftOpen) {
  const pid_t writer = ::fork();
  if (writer == 0) {
    const hid_t access = H5Pcreate(H5P_FILE_ACCESS);
    H5Pset_libver_bounds(access, H5F_LIBVER_LATEST, H5F_LIBVER_LATEST);
    const hid_t file = H5Fcreate(path("a.xmdf").c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access);
    H5Fflush(file, H5F_SCOPE_GLOBAL);
    ::_exit(0);
  }
  ::waitpid(writer, nullptr, 0);
  expect_refuses("a.xmdf", "(may use <h5clear file> to clear file consistency flags)");
}

// The root of a file with its members in the other file, which would be seen to be opened.
TEST_F(XfFileTest, OpensNoOtherFile) {
  make_file(path("other.xmdf"), [](hid_t) {});
  const std::string other = path("other.xmdf");
  const auto make = [&](const char* member, const std::function<void(hid_t root)>& replace) {
    make_file(path("a.xmdf"), [&](hid_t root) {
      make_member(root, "File Version", H5T_IEEE_F32LE, {{1}, {}, {}}, H5T_NATIVE_FLOAT,
                  std::vector<float>{2.0F});
      H5Ldelete(root, member, H5P_DEFAULT);
      replace(root);
    });
  };
  for (const char* const member : {"File Type", "File Version"}) {
    SCOPED_TRACE(member);
    const std::string reason = std::string(member) + " keeps its data in other files";
    make(member, [&](hid_t root) {
      H5Lcreate_external(other.c_str(), "/File Type", root, member, H5P_DEFAULT, H5P_DEFAULT);
    });
    expect_refuses("a.xmdf", reason);
    make(member, [&](hid_t root) {
      make_member<float>(root, member, H5T_IEEE_F32LE,
                         {{1}, {}, [&](hid_t p) { H5Pset_external(p, other.c_str(), 0, 4); }},
                         H5T_NATIVE_FLOAT, {});
    });
    expect_refuses("a.xmdf", reason);
  }
}

// The file type as other writers put it.
TEST_F(XfFileTest, IsLenientAboutTheFileType) {
  struct Case {
    H5T_str_t padding;
    std::string bytes;
    std::vector<hsize_t> extents;
    bool opens;
  };
  const std::vector<Case> cases{{H5T_STR_NULLTERM, std::string("Xmdf\0", 5), {1}, true},
                                {H5T_STR_NULLPAD, "Xmdf", {1}, true},
                                {H5T_STR_SPACEPAD, "Xmdf      ", {}, true},
                                {H5T_STR_NULLPAD, std::string("Xmdf\0zz", 7), {}, true},
                                {H5T_STR_SPACEPAD, "Xmdg ", {1}, false},
                                {H5T_STR_SPACEPAD, "  ", {1}, false}};
  for (const Case& given : cases) {
    make_file(path("t.xmdf"), [&](hid_t root) {
      H5Ldelete(root, "File Type", H5P_DEFAULT);
      const XfTypeHandle type(H5Tcopy(H5T_C_S1));
      H5Tset_size(type.get(), given.bytes.size());
      H5Tset_strpad(type.get(), given.padding);
      make_member(root, "File Type", type.get(), {given.extents, {}, {}}, type.get(),
                  std::vector<char>(given.bytes.begin(), given.bytes.end()));
    });
    given.opens ? expect_opens("t.xmdf") : expect_refuses("t.xmdf", "not an XMDF file");
  }
}

using Paths = std::vector<std::string>;

class XfPathsTest : public XfTest {
 protected:
  void expect_paths(const Paths& scalars, const Paths& vectors) {
    XfFile file;
    ASSERT_OK(XF_OPEN_FILE(path("p.xmdf"), file));
    Paths found;
    EXPECT_OK(XF_GET_SCALAR_DATASET_PATHS(file, found));
    EXPECT_EQ(found, scalars);
    EXPECT_OK(XF_GET_VECTOR_DATASET_PATHS(file, found));
    EXPECT_EQ(found, vectors);
  }
};

TEST_F(XfPathsTest, AreInNameOrderDepthFirst) {
  make_file(path("p.xmdf"), [](hid_t file) {
    make_plain_dataset(file, "zz", "DATASET SCALAR", {1, 2});
    const XfGroupHandle run = make_group(file, "run", "GENERIC");
    const XfGroupHandle temporal = make_group(run.get(), "Temporal", "MULTI DATASETS");
    make_plain_dataset(temporal.get(), "b", "dataset vector  ", {1, 2, 2});
    make_plain_dataset(temporal.get(), "Depth", "Dataset Scalar", {1, 2});
    make_plain_dataset(temporal.get(), "a", "DATASET SCALAR", {1, 2});
    const XfGroupHandle maximums = make_group(run.get(), "Maximums", "generic");
    make_plain_dataset(maximums.get(), "Depth", "DATASET SCALAR", {1, 2});
  });
  expect_paths({"run/Maximums/Depth", "run/Temporal/Depth", "run/Temporal/a", "zz"},
               {"run/Temporal/b"});
}

TEST_F(XfPathsTest, DatasetsWithoutGroupTypeAreKnownByTheirMembers) {
  make_file(path("p.xmdf"), [](hid_t file) {
    make_plain_dataset(file, "scalar", nullptr, {1, 2});
    make_plain_dataset(file, "vector", "  ", {1, 3, 2});
    make_plain_dataset(file, "three", nullptr, {1, 3, 3});
    const XfGroupHandle mesh = make_group(file, "mesh", "MESH");
    make_plain_dataset(mesh.get(), "x", "DATASET SCALAR", {1, 2});
    make_plain_dataset(file, "props", "PROPERTIES", {1, 2});
    const XfGroupHandle no_times = make_group(file, "folder");
    make_group(no_times.get(), "Times");
    make_plain_dataset(no_times.get(), "Values", nullptr, {1, 2});
  });
  expect_paths({"folder/Values", "scalar"}, {"vector"});
}

// Which would have to be opened to tell what they are.
TEST_F(XfPathsTest, MembersInOtherFilesAreNotLookedAt) {
  make_file(path("p.xmdf"), [](hid_t file) {
    for (const char* const name : {"linked", "virtual"}) {
      const XfGroupHandle group = make_group(file, name);
      make_times(group.get(), {0});
    }
    H5Lcreate_external("/dev/zero", "/v", file, "linked/Values", H5P_DEFAULT, H5P_DEFAULT);
    make_member<float>(file, "virtual/Values", H5T_IEEE_F32LE,
                       {{1, 4},
                        {},
                        [](hid_t properties) {
                          const hsize_t extents[2] = {1, 4};
                          const XfSpaceHandle space(H5Screate_simple(2, extents, nullptr));
                          H5Pset_virtual(properties, space.get(), "/dev/zero", "/v", space.get());
                        }},
                       H5T_NATIVE_FLOAT, {});
  });
  expect_paths({"linked", "virtual"}, {});
}

TEST_F(XfPathsTest, EveryObjectIsVisitedOnceAndOnlyByHardLinks) {
  make_file(path("p.xmdf"), [](hid_t file) {
    const XfGroupHandle run = make_group(file, "run", "GENERIC");
    make_plain_dataset(run.get(), "d", "DATASET SCALAR", {1, 2});
    H5Lcreate_soft("/run/d", file, "soft", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_external("other.xmdf", "/d", file, "external", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_hard(file, "/run/d", file, "same", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_hard(file, "/run", run.get(), "again", H5P_DEFAULT, H5P_DEFAULT);
    H5Lcreate_hard(file, "/", run.get(), "root", H5P_DEFAULT, H5P_DEFAULT);
  });
  expect_paths({"run/d"}, {});
}

}  // namespace
}  // namespace quillet
