// Translations of the help: what commands and options are for.

#pragma once

#include "map/translation.h"

namespace vemrado::tools {

// clang-format off
inline constexpr map::Translation helpTranslations[] = {

{"The reader of a map passes over what it does not understand. This command tells it: each finding has its "
 "place in the file, its severity and its rule, in the form in which compilers report, so that editors jump "
 "there. A summary by rule stands at the end.\n\nThe exit code is 0 without errors and warnings and 1 with "
 "them.",
 "Čtení mapy přejde, čemu nerozumí. Tento příkaz to řekne: každý nález má místo v souboru, závažnost a "
 "pravidlo, ve tvaru, v jakém hlásí překladače, takže tam editory skočí. Na konci stojí souhrn podle "
 "pravidel.\n\nNávratový kód je 0 bez chyb a varování a 1 s nimi.",
 "Wer eine Karte liest, übergeht, was er nicht versteht. Dieser Befehl sagt es: jeder Befund hat seine Stelle "
 "in der Datei, seine Schwere und seine Regel, in der Form, in der Compiler melden, so dass Editoren dorthin "
 "springen. Am Ende steht eine Übersicht nach Regeln.\n\nDer Rückgabewert ist 0 ohne Fehler und Warnungen und "
 "1 mit solchen."},
{"as points that a GIS opens over the map",
 "jako body, které GIS otevře nad mapou",
 "als Punkte, die ein GIS über der Karte öffnet"},
{"Write all findings as points too, in a format that GDAL writes, such as GeoPackage,\nor as a page (.html)",
 "Zapíše všechny nálezy také jako body ve formátu, který píše GDAL, například GeoPackage,\nnebo jako stránku "
 "(.html)",
 "Schreibt alle Befunde auch als Punkte in einem Format, das GDAL schreibt, etwa GeoPackage,\noder als Seite "
 "(.html)"},
{"Look for these rules only; file and map are all that need a line or the map",
 "Hledá jen podle těchto pravidel; file a map jsou všechna, která potřebují řádek nebo mapu",
 "Sucht nur nach diesen Regeln; file und map sind alle, die eine Zeile oder die Karte brauchen"},
{"Writes lines, points and texts, with --parcels parcel polygons too, in a format that GDAL writes: the "
 "output's name tells which, or --format. Formats that hold one layer only get a file for each, such as "
 "town_lines.shp; a DXF file takes all features with their layers. A GeoPackage opens in QGIS with the styles "
 "of the symbology.\n\nMany inputs become one output with fields source and map_scale, or an output each when "
 "OUT is a folder, which mirrors the folders of the inputs. An output appears whole or not at all. "
 "PG:dbname=gis is a database with PostGIS.\n\nThe exit code is 0 when all was made, 1 when something made "
 "lacks its closing record and so its last element, 4 when some input was not made.",
 "Zapíše čáry, body a texty, s --parcels i polygony parcel, ve formátu, který píše GDAL: určuje jej jméno "
 "výstupu nebo --format. U formátů s jedinou vrstvou vznikne soubor pro každou, například town_lines.shp; "
 "soubor DXF pojme všechny prvky s jejich vrstvami. GeoPackage se v QGIS otevře se styly symbologie.\n\nZ "
 "mnoha vstupů vznikne jeden výstup s poli source a map_scale, nebo výstup pro každý, je-li OUT složka; ta "
 "zrcadlí složky vstupů. Výstup se objeví celý, nebo vůbec. PG:dbname=gis je databáze s PostGIS.\n\nNávratový "
 "kód je 0, když vzniklo vše, 1, když něčemu z toho chybí závěrečný záznam, a tedy i poslední prvek, 4, když "
 "některý vstup převeden nebyl.",
 "Schreibt Linien, Punkte und Texte, mit --parcels auch Flurstücke, in einem Format, das GDAL schreibt: der "
 "Name der Ausgabe sagt welches, oder --format. Formate mit nur einer Ebene bekommen für jede eine Datei, "
 "etwa town_lines.shp; eine DXF-Datei nimmt alle Objekte mit ihren Ebenen auf. Ein GeoPackage öffnet sich in "
 "QGIS mit den Stilen der Symbologie.\n\nAus vielen Eingaben wird eine Ausgabe mit den Feldern source und "
 "map_scale, oder je eine, wenn OUT ein Ordner ist; er bildet die Ordner der Eingaben nach. Eine Ausgabe "
 "erscheint ganz oder gar nicht. PG:dbname=gis ist eine Datenbank mit PostGIS.\n\nDer Rückgabewert ist 0, "
 "wenn alles gemacht ist, 1, wenn etwas davon ohne Schlusssatz ist und so sein letztes Element verloren hat, "
 "4, wenn eine Eingabe nicht gewandelt ist."},
{"a GeoPackage each, in the same folders",
 "GeoPackage pro každý, ve stejných složkách",
 "je ein GeoPackage, in denselben Ordnern"},
{"what is new into a database",
 "co je nové, do databáze",
 "was neu ist, in eine Datenbank"},
{"Transform coordinates to this reference system, such as EPSG:4326",
 "Převede souřadnice do tohoto souřadnicového systému, například EPSG:4326",
 "Rechnet Koordinaten in dieses Bezugssystem um, etwa EPSG:4326"},
{"Only what touches this box, in coordinates of --srs",
 "Jen to, co zasahuje do tohoto výřezu, v souřadnicích --srs",
 "Nur was diesen Ausschnitt berührt, in Koordinaten von --srs"},
{"Unit of the rotations (U) in the file: gon, deg or rad",
 "Jednotka natočení (U) v souboru: gon, deg nebo rad",
 "Einheit der Drehungen (U) in der Datei: gon, deg oder rad"},
{"An open option of the GDAL driver, such as PARCEL_LAYER=3",
 "Volba otevření ovladače GDAL, například PARCEL_LAYER=3",
 "Eine Öffnungsoption des GDAL-Treibers, etwa PARCEL_LAYER=3"},
{"Leave out files that cannot be read; the default for folders, archives and lists",
 "Vynechá soubory, které nelze číst; u složek, archivů a seznamů výchozí",
 "Lässt Dateien weg, die nicht zu lesen sind; die Vorgabe bei Ordnern, Archiven und Listen"},
{"Write what became of every input",
 "Zapíše, co se stalo s každým vstupem",
 "Schreibt, was aus jeder Eingabe wurde"},
{"Add to the layers that are there",
 "Přidá do vrstev, které už existují",
 "Fügt zu den vorhandenen Ebenen hinzu"},
{"Add new sheets and replace those that have changed",
 "Přidá nové listy a nahradí ty, které se změnily",
 "Fügt neue Blätter hinzu und ersetzt geänderte"},
{"When updating, remove sheets that are not among the inputs",
 "Při aktualizaci odstraní listy, které nejsou mezi vstupy",
 "Entfernt beim Aktualisieren Blätter, die nicht unter den Eingaben sind"},
{"Schema of a PostgreSQL output",
 "Schéma výstupu v PostgreSQL",
 "Schema einer Ausgabe in PostgreSQL"},
{"Make an index of many maps: outlines, scales, dates, counts",
 "Vytvoří přehled mnoha map: obrysy, měřítka, data, počty",
 "Macht ein Verzeichnis vieler Karten: Umrisse, Maßstäbe, Daten, Anzahlen"},
{"Writes a layer sheets with the outline of each map, its scale, date and title from its header, counts of "
 "lines, points and texts, and a hash of the file. The exit codes are those of convert.",
 "Zapíše vrstvu sheets s obrysem každé mapy, jejím měřítkem, datem a názvem z hlavičky, počty čar, bodů a "
 "textů a otiskem souboru. Návratové kódy jsou jako u convert.",
 "Schreibt eine Ebene sheets mit dem Umriss jeder Karte, Maßstab, Datum und Titel aus ihrem Kopf, den "
 "Anzahlen von Linien, Punkten und Texten und einem Hash der Datei. Die Rückgabewerte sind die von convert."},
{"the maps of a folder and the folders in it",
 "mapy složky a podsložek",
 "die Karten eines Ordners und seiner Unterordner"},
{"those of an archive",
 "mapy z archivu",
 "die eines Archivs"},
{"The index; its ending says the format",
 "Přehled; přípona určuje formát",
 "Das Verzeichnis; die Endung sagt das Format"},
{"Read only what is new or has changed",
 "Čte jen to, co je nové nebo se změnilo",
 "Liest nur, was neu ist oder sich geändert hat"},
{"When updating, remove maps that are not among the inputs",
 "Při aktualizaci odstraní mapy, které nejsou mezi vstupy",
 "Entfernt beim Aktualisieren Karten, die nicht unter den Eingaben sind"},
{"Say what changed between two states of a map",
 "Řekne, co se mezi dvěma stavy mapy změnilo",
 "Sagt, was sich zwischen zwei Ständen einer Karte geändert hat"},
{"Compares what the maps show: the order of records, the direction of lines, where they are cut and how "
 "numbers are written make no difference. Lines are compared segment by segment within a layer. Equal "
 "geometry with another code, symbol or text is changed; a text that moved by no more than the tolerance is "
 "moved. Totals stand at the end.\n\nThe exit code is 0 when the maps are equal, 1 when they differ and 3 "
 "when a file cannot be compared.",
 "Porovná, co mapy ukazují: na pořadí záznamů, směru čar, místech jejich dělení a zápisu čísel nezáleží. Čáry "
 "se porovnávají úsek po úseku v téže vrstvě. Stejná geometrie s jiným kódem, značkou nebo textem je změněná; "
 "text, který se posunul nejvýš o toleranci, je posunutý. Na konci stojí součty.\n\nNávratový kód je 0, když "
 "se mapy neliší, 1, když se liší, a 3, když soubor nelze porovnat.",
 "Vergleicht, was die Karten zeigen: die Reihenfolge der Sätze, die Richtung der Linien, wo sie geteilt und "
 "wie Zahlen geschrieben sind, macht keinen Unterschied. Linien werden Stück für Stück in einer Ebene "
 "verglichen. Gleiche Geometrie mit anderem Kode, Symbol oder Text ist geändert; ein Text, der sich um "
 "höchstens die Toleranz bewegt hat, ist verschoben. Am Ende stehen Summen.\n\nDer Rückgabewert ist 0, wenn "
 "die Karten gleich sind, 1, wenn sie sich unterscheiden, und 3, wenn eine Datei nicht zu vergleichen ist."},
{"one line for each change",
 "jeden řádek na změnu",
 "eine Zeile für jede Änderung"},
{"the texts that changed",
 "texty, které se změnily",
 "die geänderten Texte"},
{"for QGIS: added green, removed red, changed blue",
 "pro QGIS: přidané zeleně, odstraněné červeně, změněné modře",
 "für QGIS: Hinzugefügtes grün, Entferntes rot, Geändertes blau"},
{"texts may have moved by half a metre",
 "texty se směly posunout o půl metru",
 "Texte dürfen um einen halben Meter verschoben sein"},
{"The VKM file as it was; - is standard input",
 "Soubor VKM v dřívějším stavu; - je standardní vstup",
 "Die VKM-Datei im alten Stand; - ist die Standardeingabe"},
{"The VKM file as it is; - is standard input",
 "Soubor VKM v dnešním stavu; - je standardní vstup",
 "Die VKM-Datei im neuen Stand; - ist die Standardeingabe"},
{"Metres by which a text may have moved",
 "O kolik metrů se text mohl posunout",
 "Meter, um die ein Text verschoben sein darf"},
{"Write the changes as features too, in a format that GDAL writes, such as GeoPackage",
 "Zapíše změny také jako prvky ve formátu, který píše GDAL, například GeoPackage",
 "Schreibt die Änderungen auch als Objekte in einem Format, das GDAL schreibt, etwa GeoPackage"},
{"Write changes as JSON Lines",
 "Vypíše změny jako JSON Lines",
 "Schreibt Änderungen als JSON Lines"},
{"Writes every element in file order, one JSON object a line. A line carries its elements with point, type "
 "letter\nand K, M, R, S and U values; a text carries its text in UTF-8, its point and D, F, H, K and U "
 "values. Numbers\nread back to the same bits.\n\nA file without its closing record loses its last element; "
 "the exit code is 1 then.",
 "Zapíše každý prvek v pořadí souboru, jeden objekt JSON na řádek. Čára nese své prvky s bodem, písmenem "
 "typu\na hodnotami K, M, R, S a U; text nese svůj text v UTF-8, bod a hodnoty D, F, H, K a U. Čísla se čtou "
 "zpět na stejné bity.\n\nSoubor bez závěrečného záznamu ztratil poslední prvek; návratový kód je pak 1.",
 "Schreibt jedes Element in der Reihenfolge der Datei, ein JSON-Objekt je Zeile. Eine Linie trägt ihre "
 "Elemente mit Punkt,\nTypbuchstaben und den Werten K, M, R, S und U; ein Text trägt seinen Text in UTF-8, "
 "seinen Punkt und die Werte D, F, H, K\nund U. Zahlen lesen sich zu denselben Bits zurück.\n\nEine Datei "
 "ohne Schlusssatz verliert ihr letztes Element; der Rückgabewert ist dann 1."},
{"What to write",
 "Co zapsat",
 "Was zu schreiben ist"},
{"For each file: map scale, relative or absolute coordinates, extents, and by layer the lines, line elements "
 "by\ntype letter, texts, symbols and codes.\n\nIt also says whether the file is complete: a file without its "
 "closing record has lost its last element. The exit\ncode is 1 when any file is incomplete or cannot be used.",
 "Pro každý soubor: měřítko mapy, relativní nebo absolutní souřadnice, rozsah a po vrstvách čáry, prvky čar "
 "podle\npísmene typu, texty, značky a kódy.\n\nŘekne také, zda je soubor úplný: soubor bez závěrečného "
 "záznamu ztratil poslední prvek. Návratový kód je 1, je-li některý\nsoubor neúplný nebo jej nelze použít.",
 "Für jede Datei: Maßstab der Karte, relative oder absolute Koordinaten, Ausdehnung und je Ebene die Linien, "
 "Linienelemente\nnach Typbuchstaben, Texte, Symbole und Kodes.\n\nDazu, ob die Datei vollständig ist: eine "
 "Datei ohne Schlusssatz hat ihr letztes Element verloren. Der Rückgabewert ist 1,\nwenn eine Datei "
 "unvollständig oder nicht zu verwenden ist."},
{"Pages of this paper, as a PDF: a0 to a6, or WIDTHxHEIGHT in millimetres; a map that needs more than one "
 "gets an overview before them",
 "Stránky tohoto papíru, jako PDF: a0 až a6, nebo ŠÍŘKAxVÝŠKA v milimetrech; potřebuje-li mapa více stránek, "
 "předchází jim přehled",
 "Seiten dieses Papiers, als PDF: a0 bis a6, oder BREITExHÖHE in Millimetern; braucht die Karte mehr als "
 "eine, so kommt eine Übersicht davor"},
{"Pages that are wider than high",
 "Stránky na šířku",
 "Seiten im Querformat"},
{"Draw at this scale, as 500 for 1 : 500 (default: that of the map); with --page also fit, to fit one page",
 "Kreslí v tomto měřítku, 500 znamená 1 : 500 (výchozí: měřítko mapy); s --page také fit, aby se mapa vešla "
 "na jednu stránku",
 "Zeichnet in diesem Maßstab, 500 heißt 1 : 500 (Vorgabe: der der Karte); mit --page auch fit, damit alles "
 "auf eine Seite passt"},
{"Builds parcels from the boundary lines of a map, gives them the parcel numbers that lie inside, and lists "
 "number, area in square metres and the numbers of the parcels on the other side of the boundaries. A parcel "
 "without a number is shown as \"?\". Nothing is closed by guess: gaps in boundaries are warnings.",
 "Sestaví parcely z hranic mapy, přidělí jim parcelní čísla, která v nich leží, a vypíše číslo, výměru v "
 "metrech čtverečních a čísla parcel na druhé straně hranic. Parcela bez čísla se vypíše jako \"?\". Nic se "
 "neuzavírá odhadem: mezery v hranicích jsou varování.",
 "Bildet Flurstücke aus den Grenzlinien einer Karte, gibt ihnen die Flurstücksnummern, die darin liegen, und "
 "listet Nummer, Fläche in Quadratmetern und die Nummern der Flurstücke jenseits der Grenzen. Ein Flurstück "
 "ohne Nummer wird als \"?\" gezeigt. Nichts wird auf Verdacht geschlossen: Lücken in Grenzen sind Warnungen."},
{"Draws lines in colour, width and dash pattern of their line types, symbols and texts, at the map scale of "
 "the\nfile: a millimetre of an SVG or PDF picture is one on the printed map. --width makes the whole picture "
 "so many pixels\nwide instead. North is up unless --orientation says otherwise. Several sheets are drawn "
 "side by side, at the scale of the\nfirst.\n\nThe picture appears whole or not at all. A picture that would "
 "be too large is refused with its size: ask for a --width\nor a part of the map by --bbox.\n\nA name that "
 "ends in .html makes a page with the map inside: one file to mail, that any browser opens without a "
 "network.\nIt takes one map, --encoding and --data; the rest is chosen in the page.",
 "Kreslí čáry v barvě, tloušťce a čárkování jejich druhů, značky a texty, v měřítku mapy: milimetr obrázku "
 "SVG nebo PDF\nje milimetr vytištěné mapy. --width udělá celý obrázek široký tolik pixelů. Sever je nahoře, "
 "pokud --orientation neřekne\njinak. Více listů se kreslí vedle sebe, v měřítku prvního.\n\nObrázek se "
 "objeví celý, nebo vůbec. Příliš velký obrázek je odmítnut s udáním velikosti: zvolte --width nebo část "
 "mapy\npomocí --bbox.\n\nJméno s příponou .html vytvoří stránku s mapou uvnitř: jediný soubor k poslání, "
 "který otevře každý prohlížeč bez sítě.\nPojme jednu mapu, --encoding a --data; ostatní se volí na stránce.",
 "Zeichnet Linien in Farbe, Breite und Strichmuster ihrer Linientypen, Symbole und Texte, im Maßstab der "
 "Karte: ein\nMillimeter eines SVG- oder PDF-Bildes ist einer auf der gedruckten Karte. --width macht das "
 "ganze Bild so viele Pixel\nbreit. Norden ist oben, wenn --orientation nichts anderes sagt. Mehrere Blätter "
 "werden nebeneinander gezeichnet, im\nMaßstab des ersten.\n\nDas Bild erscheint ganz oder gar nicht. Ein zu "
 "großes Bild wird mit seiner Größe abgelehnt: zu wählen ist dann --width\noder mit --bbox ein Teil der "
 "Karte.\n\nEin Name mit der Endung .html macht eine Seite mit der Karte darin: eine Datei zum Verschicken, "
 "die jeder Browser ohne\nNetz öffnet. Sie nimmt eine Karte, --encoding und --data; alles andere wird auf der "
 "Seite gewählt."},
{"pages to print, with an overview",
 "stránky k tisku, s přehledem",
 "Seiten zum Drucken, mit Übersicht"},
{"pack makes a shape file (.ksh) from a text source; unpack writes the source of a shape file, to standard "
 "output\nwhen no file is named. Packing what was unpacked gives the same bytes: records that are no drawings "
 "are kept\ntoo. docs/symbology-format.md describes both formats.",
 "pack vytvoří soubor značek (.ksh) z textového zdroje; unpack zapíše zdroj souboru značek, na standardní "
 "výstup, není-li\nuveden soubor. Zabalením rozbaleného vzniknou stejné bajty: zachovají se i záznamy, které "
 "nejsou kresbami. Oba formáty\npopisuje docs/symbology-format.md.",
 "pack macht eine Formdatei (.ksh) aus einer Textquelle; unpack schreibt die Quelle einer Formdatei, auf "
 "die\nStandardausgabe, wenn keine Datei genannt ist. Packen des Ausgepackten ergibt dieselben Bytes: auch "
 "Sätze, die keine\nZeichnungen sind, bleiben erhalten. docs/symbology-format.md beschreibt beide Formate."},
{"pack or unpack",
 "pack (vytvořit) nebo unpack (rozebrat)",
 "pack (packen) oder unpack (auspacken)"},
{"Loads a symbology as for the import of a map and looks up every line code and symbol code that its tables "
 "name.\nEvery problem is listed; the exit code is 1 when there are any. -o draws a sheet with every line "
 "type and every\nsymbol.\n\nDIR is the directory that holds VKMSym, or VKMSym itself; without it the "
 "symbology of --data is taken.",
 "Načte symbologii jako při importu mapy a vyhledá každý kód čáry a značky, který její tabulky uvádějí. "
 "Vypíše všechny\nvady; jsou-li nějaké, je návratový kód 1. -o nakreslí list se všemi druhy čar a všemi "
 "značkami.\n\nDIR je adresář, ve kterém je VKMSym, nebo VKMSym sám; bez něj se bere symbologie z --data.",
 "Lädt eine Symbologie wie beim Import einer Karte und schlägt jeden Linien- und Symbolkode nach, den ihre "
 "Tabellen nennen.\nAlle Mängel werden gelistet; gibt es welche, ist der Rückgabewert 1. -o zeichnet ein "
 "Blatt mit allen Linientypen und\nallen Symbolen.\n\nDIR ist das Verzeichnis, das VKMSym enthält, oder "
 "VKMSym selbst; ohne gilt die Symbologie von --data."},
{"The symbology",
 "Symbologie",
 "Die Symbologie"},
{"Makes a page with the map inside, as 'vkm render FILE -o page.html' does, in the folder of temporary files, "
 "writes its name and opens it in the browser. The page stays there until that folder is cleared. Nothing is "
 "sent anywhere.",
 "Vytvoří stránku s mapou uvnitř, jako 'vkm render FILE -o page.html', ve složce dočasných souborů, vypíše "
 "její jméno a otevře ji v prohlížeči. Stránka tam zůstane, dokud se složka nevyčistí. Nikam se nic neposílá.",
 "Macht eine Seite mit der Karte darin, wie 'vkm render FILE -o page.html', im Ordner der temporären Dateien, "
 "schreibt ihren Namen und öffnet sie im Browser. Die Seite bleibt dort, bis der Ordner geleert wird. Nichts "
 "wird irgendwohin gesendet."},
};
// clang-format on

}  // namespace vemrado::tools
