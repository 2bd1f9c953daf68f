#include "postgis.h"

namespace vemrado::gdal {

namespace {

struct TableText {
    OutputKind kind;
    const char* name;
    const char* comment;
};
constexpr TableText tables[] = {{outputLines, "lines", "Lines of cadastral map sheets"},
                                {outputPoints, "points", "Symbols and single points of cadastral map sheets"},
                                {outputTexts, "texts", "Texts of cadastral map sheets"},
                                {outputParcels, "parcels", "Parcels made from the boundary lines"},
                                {outputSheets, "sheets", "Sheets that were loaded, with their outlines"}};

constexpr const char* makeStyles =
    "CREATE TABLE IF NOT EXISTS public.layer_styles (id serial PRIMARY KEY, f_table_catalog varchar, "
    "f_table_schema varchar, f_table_name varchar, f_geometry_column varchar, stylename text, styleqml xml, "
    "stylesld xml, useasdefault boolean, description text, owner varchar(63) DEFAULT CURRENT_USER, ui xml, "
    "update_time timestamp DEFAULT CURRENT_TIMESTAMP, type varchar)";

std::string NameOf(OGRLayer& layer) {
    const std::string name = layer.GetName();
    return name.substr(name.rfind('.') + 1);  // without the schema
}

}  // namespace

bool DescribeTables(OutputLayers& output) {
    for (const auto& [kind, name, comment] : tables) {
        if (!output.Has(kind) || output.WasThere(kind)) continue;
        const std::string table = output.Table(name);
        if (!output.Run("COMMENT ON TABLE " + table + " IS " + OutputLayers::Quoted(comment))) return false;
        OGRFeatureDefn& definition = *output.Layer(kind)->GetLayerDefn();
        for (int i = 0; i < definition.GetFieldCount(); ++i) {
            const OGRFieldDefn& field = *definition.GetFieldDefn(i);
            const std::string text = output.CommentOf(kind, field.GetNameRef());
            if (text.empty()) continue;
            if (!output.Run("COMMENT ON COLUMN " + table + ".\"" + field.GetNameRef() + "\" IS " +
                            OutputLayers::Quoted(text)))
                return false;
        }
    }
    return true;
}

bool AddPostgisStyles(OutputLayers& output, const LayerStyles& styles, const std::string& schema,
                      const std::vector<OGRLayer*>& layers) {
    if (!output.Run(makeStyles)) return false;
    const std::string inSchema = schema.empty() ? "current_schema()" : OutputLayers::Quoted(schema);
    for (OGRLayer* layer : layers) {
        const std::string name = NameOf(*layer);
        const std::string quoted = OutputLayers::Quoted(name);
        const std::string column = OutputLayers::Quoted(layer->GetGeometryColumn());
        if (!output.Run("DELETE FROM public.layer_styles WHERE f_table_catalog = current_database() AND "
                        "f_table_schema = " +
                        inSchema + " AND f_table_name = " + quoted + " AND f_geometry_column = " + column))
            return false;
        if (!output.Run("INSERT INTO public.layer_styles (f_table_catalog, f_table_schema, f_table_name, "
                        "f_geometry_column, stylename, styleqml, useasdefault, description) VALUES "
                        "(current_database(), " +
                        inSchema + ", " + quoted + ", " + column +
                        ", 'map', "
                        "XMLPARSE(DOCUMENT " +
                        OutputLayers::Quoted(styles.QmlOf(name)) + "), true, 'As the symbology draws it')"))
            return false;
    }
    return true;
}

}  // namespace vemrado::gdal
