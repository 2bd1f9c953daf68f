// vkm convert and vkm index: what they can be asked for.

#include <memory>

#include "commands.h"
#include "common_options.h"
#include "convert_run.h"
#include "inputs.h"
#include "program.h"

namespace vemrado::tools {

void AddConvertCommand(Program& program) {
    const auto options = std::make_shared<ConvertOptions>();
    const CommandText text = {
        "convert",
        "Convert files to GeoPackage, DXF, GeoJSON and other formats",
        "Writes lines, points and texts, with --parcels parcel polygons too, in a format that GDAL writes: "
        "the output's name tells which, or --format. Formats that hold one layer only get a file for each, "
        "such as town_lines.shp; a DXF file takes all features with their layers. A GeoPackage opens in "
        "QGIS with the styles of the symbology.\n\n"
        "Many inputs become one output with fields source and map_scale, or an output each when OUT is a "
        "folder, which mirrors the folders of the inputs. An output appears whole or not at all. "
        "PG:dbname=gis is a database with PostGIS.\n\n"
        "The exit code is 0 when all was made, 1 when something made lacks its closing record and so its "
        "last "
        "element, 4 when some input was not made.",
        {{"vkm convert town.vkm -o town.gpkg", "a GeoPackage that looks like the map"},
         {"vkm convert town.vkm -o town.gpkg --parcels", "with parcel polygons and their numbers"},
         {"vkm convert sheets/*.vkm -o country.gpkg", "many files in one"},
         {"vkm convert sheets/*.vkm -o out/ --format fgb --jobs 4", "a file each, four at a time"},
         {"vkm convert -r sheets/ -o out/ --report report.csv", "a GeoPackage each, in the same folders"},
         {"vkm convert archive.zip -o PG:dbname=gis --schema cadastre --update",
          "what is new into a database"},
         {"vkm convert town.vkm -o lines.geojson --layers lines", "one layer only"},
         {"vkm convert town.vkm -o - --format geojsonl", "a feature a line to standard output"}}};
    CLI::App& command = program.Add(
        text, [options](Environment& environment) { return RunConversion(*options, environment); });
    AddInputOptions(command, options->inputs);
    command
        .add_option("-o,--output", options->output,
                    "The output file, a folder for an output each, or - for standard output")
        ->type_name("OUT")
        ->required();
    CLI::Option* format =
        command.add_option("-f,--format", options->format, "A file extension or the name of a GDAL driver")
            ->type_name("FORMAT");
    program.SetChoices(
        *format, {"gpkg", "fgb", "geojson", "geojsonl", "csv", "dxf", "gml", "kml", "shp", "sqlite", "xlsx"});
    CLI::Option* layers =
        command.add_option("--layers", options->layers, "Only these of lines, points, texts and parcels")
            ->type_name("NAME,...")
            ->delimiter(',')
            ->allow_extra_args(false);
    program.SetChoices(*layers, {"lines", "points", "texts", "parcels"});
    command.add_flag("--parcels", options->parcels, "Add parcel polygons built from the boundary lines");
    command
        .add_option("--srs", options->reference,
                    "Reference system, such as EPSG:5514 (the default); NO for none")
        ->type_name("SRS");
    command.add_option("-j,--jobs", options->jobs, "Files converted at the same time when OUT is a folder")
        ->type_name("N")
        ->capture_default_str()
        ->check(CLI::Range(1, 256));
    command
        .add_option("--t-srs", options->targetReference,
                    "Transform coordinates to this reference system, such as EPSG:4326")
        ->type_name("SRS");
    command.add_option("--bbox", options->box, "Only what touches this box, in coordinates of --srs")
        ->type_name("X,Y,X,Y")
        ->delimiter(',')
        ->expected(4);
    CLI::Option* unit = command.add_option("--angle-unit", options->angleUnit,
                                           "Unit of the rotations (U) in the file: gon, deg or rad");
    unit->type_name("UNIT")->check(CLI::IsMember({"gon", "deg", "rad"}).description(""))->default_str("gon");
    program.SetChoices(*unit, {"gon", "deg", "rad"});
    command
        .add_option("--open-option", options->openOptions,
                    "An open option of the GDAL driver, such as PARCEL_LAYER=3")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    command.add_flag("--keep-going", options->keepGoing,
                     "Leave out files that cannot be read; the default for folders, archives and lists");
    command.add_option("--report", options->report, "Write what became of every input")
        ->type_name("FILE.json|FILE.csv");
    command.add_flag("--append", options->append, "Add to the layers that are there");
    command.add_flag("--update", options->update, "Add new sheets and replace those that have changed");
    command.add_flag("--prune", options->prune, "When updating, remove sheets that are not among the inputs");
    command.add_option("--schema", options->schema, "Schema of a PostgreSQL output")->type_name("NAME");
    AddOrientationOption(program, command, options->axisOrientation);
    AddEncodingOption(program, command, options->encoding);
}

void AddIndexCommand(Program& program) {
    const auto options = std::make_shared<ConvertOptions>();
    options->index = true;
    const CommandText text = {
        "index",
        "Make an index of many maps: outlines, scales, dates, counts",
        "Writes a layer sheets with the outline of each map, its scale, date and title from its header, "
        "counts "
        "of lines, points and texts, and a hash of the file. The exit codes are those of convert.",
        {{"vkm index -r sheets/ -o index.gpkg", "the maps of a folder and the folders in it"},
         {"vkm index archive.zip -o index.geojson", "those of an archive"}}};
    CLI::App& command = program.Add(
        text, [options](Environment& environment) { return RunConversion(*options, environment); });
    AddInputOptions(command, options->inputs);
    command.add_option("-o,--output", options->output, "The index; its ending says the format")
        ->type_name("OUT")
        ->required();
    command.add_option("-f,--format", options->format, "A file extension or the name of a GDAL driver")
        ->type_name("FORMAT");
    command
        .add_option("--srs", options->reference,
                    "Reference system, such as EPSG:5514 (the default); NO for none")
        ->type_name("SRS");
    command.add_flag("--update", options->update, "Read only what is new or has changed");
    command.add_flag("--prune", options->prune, "When updating, remove maps that are not among the inputs");
    command.add_option("--report", options->report, "Write what became of every input")
        ->type_name("FILE.json|FILE.csv");
    AddOrientationOption(program, command, options->axisOrientation);
    AddEncodingOption(program, command, options->encoding);
}

}  // namespace vemrado::tools
