#include <gtest/gtest.h>

#include "driver/argument_parser.h"
#include "driver/operation_table.h"
#include "program_runner.h"

namespace quillet {
namespace {

using testing::RUN;
using testing::RunResult;
using testing::Workspace;

// What a run says after its banner, from the arguments alone.
std::string console_of(const std::vector<std::string>& arguments) {
  const Workspace folder;
  const RunResult run = RUN(folder, arguments);
  const std::string banner = "\nBuild 2020-07-AH\n\n";
  EXPECT_EQ(run.output.substr(0, banner.size()), banner);
  EXPECT_TRUE(run.ended_well());
  EXPECT_TRUE(folder.names().empty());
  return run.output.substr(banner.size());
}

void expect_console(const std::string& text, const std::vector<std::string>& command_lines) {
  for (const std::string& line : command_lines) {
    EXPECT_EQ(console_of(testing::WORDS(line)), text) << line;
  }
}

const std::string pause = "Press Enter to Continue\n";
const std::string see_help = "   quillet --help shows all options.\n" + pause;
const std::string exits = "\nPress Enter to Close\n";
const std::string multiple =
    "\nERROR - Multiple operational flags specified, expecting 1.\n" + exits;

TEST(OptionMessages, OfUnknownOptionsAndValues) {
  for (const std::string option : {"-x", "-", "-2d", "-ensigh", "/y", "\xE2\x80\x93x"}) {
    expect_console("\nERROR - Incorrect flag specified: \"" + option + "\"\n" + see_help, {option});
  }
  // -atoi is taken for -toi, but the value stands one column further on.
  for (const std::string option :
       {"-dur", "-durx", "-dur0.3x", "-durinf", "-ddur", "-trim", "-toi", "-atoi", "-k", "-r", "-t",
        "-rangeA", "-rangeBx", "-range5", "-dttol", "-s", "-s1.5", "-velocity"}) {
    expect_console(
        "ERROR - Reading time for keep or remove argument, or cutoff depth for duration\n   \"" +
            option + "\"\n" + pause,
        {option});
  }
  expect_console(
      "\nERROR - Only one scalar dataset can be specified with \"-s\" option..\n" + exits,
      {"-s1 -s2"});
  expect_console(
      "\nERROR - Only one vector dataset can be specified with \"-v\" option..\n" + exits,
      {"-v1 -v2"});
}

TEST(OptionMessages, WarnOfWhatIsNotUsed) {
  const std::string none =
      "\nChecking operational flags.\n\nERROR - No operational flags specified.\n" + exits;
  for (const std::string option : {"-t0,3", "-t1/5", "-s1,2", "-dttol0.1 h"}) {
    EXPECT_EQ(console_of({option}),
              "WARNING - Text after the number is ignored: \"" + option + "\"\n" + none);
  }
  expect_console("WARNING - Unknown result type: \"zz\"\n" + none, {"-typezz"});
  expect_console("WARNING - Unknown result type: \"\"\n" + none, {"-type"});
  EXPECT_EQ(console_of({"-t 5 ", "-typen/a", "-b"}), none);
}

// The first check that fails is the only one that speaks.
TEST(OptionMessages, OfOptionsThatDoNotFit) {
  expect_console("\nERROR - No filename specified for -out option.\n" + pause,
                 {"-max a.dat -out", "-k5 a b -out"});
  expect_console(
      "\nERROR - Can only specify one .dat file for -dur, -trim, -va, -times, -k and -r "
      "options.\n" +
          pause,
      {"-k5 a b", "-r5 a b", "-dur1 a b", "-trim1 a b", "-va a b", "-times a b", "-k5 -dif a b"});
  expect_console("\nERROR - Must specify two .dat files for -dif or -ddur options.\n" + pause,
                 {"-dif", "-dif a", "-dif a b c d", "-ddur1 a", "-ddur1 -rangeB5 a"});
  expect_console("\nERROR - Must specify at least two .dat files for -con option.\n" + pause,
                 {"-con a", "-con -rangeB5"});
  expect_console("\nERROR - Must specify at start and end time if using -range option.\n" + pause,
                 {"-rangeB5", "-rangeA5 a", "-max -rangeB5 a"});
  expect_console("\nERROR - Range B input less than or equal to Range A.\n" + pause,
                 {"-rangeA5 -rangeB5", "-rangeA6 -rangeB5"});
  expect_console(
      "ERROR - Must specify an end time using -t option for duration differences\n" + exits,
      {"-ddur1 a b"});
  expect_console("ERROR - Cannot specify both -type and -path options.\n" + exits,
                 {"-max -typeh -pathx"});
  expect_console("ERROR - Cannot specify both \"-s\" and \"-v\" options.\n" + exits,
                 {"-max -s1 -v1"});
  expect_console(
      "\nChecking operational flags.\n\nERROR - No operational flags specified.\n" + exits,
      {"-b -t5 a"});
  // With two inputs of -con or -dif the range is not looked at.
  expect_console(
      "\nChecking operational flags.\nOpertational flag -max (maximum)\n"
      "Opertational flag -dif (difference)\n" +
          multiple,
      {"-dif -max -rangeB5 a b"});
}

TEST(OptionReport, NamesEveryOperationInItsOrderHoweverItIsSpelt) {
  EXPECT_EQ(console_of({"-toi1", "-EnSight", "-Conv", "-concat", "-va", "/xnfo", "-times", "-trim1",
                        "-r1", "-RANGEA1", "-K1", "-ddur1", "-dur1", "-difference", "-Minimal",
                        "\x96max"}),
            "\nChecking operational flags.\n"
            "Opertational flag -max (maximum)\n"
            "Opertational flag -min (minimum)\n"
            "Opertational flag -dif (difference)\n"
            "Opertational flag -dur (duration)\n"
            "Opertational flag -ddur (difference in duration)\n"
            "Opertational flag -k (keep)\n"
            "Opertational flag -range (range)\n"
            "Opertational flag -r (remove)\n"
            "Opertational flag -trim (trim)\n"
            "Opertational flag -times (times)\n"
            "Opertational flag -xnfo (XMDF information)\n"
            "Opertational flag -va (velocity angle)\n"
            "Opertational flag -con (concatenate)\n"
            "Opertational flag -conv (convert)\n"
            "Opertational flag -ensight (convert to ensight)\n"
            "Opertational flag -toi (time to increase)\n" +
                multiple);
}

RunOptions parsed(const std::vector<std::string>& arguments) {
  return PARSE_ARGUMENTS(arguments);
}

TEST(OptionValues, StandAfterTheirKeys) {
  const RunOptions options =
      parsed({"-k99999", "-t5", "-rangeA-1.5", "-rangeB 2,3", "-dttol1D-2", "-s3", "-batch"});
  EXPECT_EQ(options.operations.size(), 2);
  EXPECT_EQ(options.operations.front()->flag, "-k");
  EXPECT_EQ(options.time, 5.0F);
  EXPECT_EQ(options.range_start, -1.5F);
  EXPECT_EQ(options.range_end, 2.0F);
  EXPECT_EQ(options.tolerance, 0.01F);
  EXPECT_EQ(options.scalar_id, 3);
  EXPECT_TRUE(options.batch);
}

// Columns count from the dash, not from its bytes; the name of an output has none of it.
TEST(OptionValues, StandAfterAnEnDashToo) {
  const std::string dash = "\xE2\x80\x93";
  const RunOptions options = parsed(
      {dash + "dur0.3", dash + "t2.5", dash + "s7", dash + "out", dash + " x.dat", "\xE2\x80"});
  EXPECT_EQ(options.operation_tag, "dur0.3");
  EXPECT_EQ(options.time, 2.5F);
  EXPECT_EQ(options.scalar_id, 7);
  EXPECT_EQ(options.output_name, dash + " x.dat");
  EXPECT_EQ(options.inputs, std::vector<std::string>{"\xE2\x80"});
}

TEST(OptionValues, NamesFollowTheirOptionsWhateverTheyLookLike) {
  const RunOptions max_as_name = parsed({"-out", "-max", "a.dat"});
  EXPECT_EQ(max_as_name.output_name, "-max");
  EXPECT_TRUE(max_as_name.operations.empty());

  EXPECT_EQ(parsed({"-2dm", "-out", "x"}).mesh_file, "-out");
  EXPECT_FALSE(parsed({"x", "-2dm"}).mesh_file);
  EXPECT_FALSE(parsed({"-out", "-out"}).output_name_missing);
}

TEST(OptionValues, TypesAndPaths) {
  const auto name_of = [](const std::string& option) { return parsed({option}).type_name; };
  EXPECT_EQ(name_of("-typeV"), "Vector Velocity");
  EXPECT_EQ(name_of("-typeq"), "Vector Unit Flow");
  EXPECT_EQ(name_of("-TYPEh"), "Water Level");
  EXPECT_EQ(name_of("-typen/a"), "060");
  EXPECT_EQ(name_of("-typeWI10"), "Wind");
  EXPECT_EQ(name_of("-typeWI10 and more"), "Wind");
  EXPECT_EQ(name_of("-typetim"), std::string(40, '\0'));
  EXPECT_EQ(parsed({"-typeh", "-typezz"}).type_name, "Water Level");
  EXPECT_EQ(parsed({"-path\"Max Value\""}).dataset_path, "Max Value");
  EXPECT_EQ(parsed({"-pathMaxMax/Max Value "}).dataset_path, "MaxMax/Max Value");
}

TEST(OptionValues, ArgumentsEndAfter1000Characters) {
  const std::string name(1500, 'n');
  EXPECT_EQ(parsed({name}).inputs, std::vector{name.substr(0, 1000)});
  EXPECT_EQ(parsed({"-out", name}).output_name, name.substr(0, 1000));
  EXPECT_EQ(parsed({"-2dm", name}).mesh_file, name.substr(0, 1000));
  EXPECT_EQ(parsed({"-path" + name}).dataset_path, name.substr(0, 995));
  EXPECT_EQ(parsed({"-trim2 " + name}).operation_tag, ("trim2 " + name).substr(0, 100));
  EXPECT_EQ(console_of({"-" + name}),
            "\nERROR - Incorrect flag specified: \"-" + name.substr(0, 999) + "\"\n" + see_help);
}

// A mistyped absolute path is a missing file, not an option that happens to match.
TEST(AbsolutePaths, AreInputs) {
  const Workspace folder;
  folder.write("max_d.dat", "x");
  const std::string existing = folder.path("max_d.dat");
  EXPECT_EQ(parsed({existing}).inputs, std::vector<std::string>{existing});
  EXPECT_EQ(parsed({"/max/missing.dat"}).inputs, std::vector<std::string>{"/max/missing.dat"});
  EXPECT_EQ(parsed({"/pathMaxMax/Max Value"}).dataset_path, "MaxMax/Max Value");
  EXPECT_TRUE(parsed({"/b"}).batch);
}

}  // namespace
}  // namespace quillet
