#!/usr/bin/env python3
"""Writes samples/house.xml: a small house in gbXML, described by its planes.

usage: samples/make_house.py > samples/house.xml

Lengths in metres, x to the east, y to the north. house.md works out what this house measures.
"""

import sys
from xml.sax.saxutils import escape, quoteattr

# --- levels ---------------------------------------------------------------------------------------
GROUND, FIRST, ATTIC = 0.0, 2.7, 5.3  # floors of the storeys
GARAGE_TOP = 2.5                      # flat roof of the garage
EAVES, RIDGE = 5.8, 8.8               # knee walls of 0.5 m; 3 m of rise over 4 m

# --- materials: name, thickness m, conductivity W/(m.K), density kg/m3, specific heat J/(kg.K) -----
# Design values of EN ISO 10456:2007, table 3; conductivities of the insulants are usual declared
# values of products to EN 13162 (mineral wool), EN 13163 (EPS) and EN 13164 (XPS). The block is
# known by its resistance only, as makers state it: ("R", value) in the place of the conductivity.
MATERIALS = {
    "render": ("Enduit ciment et sable", 0.015, 1.0, 1800, 1000),
    "block": ("Brique creuse isolante 20 cm", 0.20, ("R", 1.0), 750, 1000),
    "wool-12": ("Laine minérale 12 cm", 0.12, 0.035, 25, 1030),
    "wool-4": ("Laine minérale 4,5 cm", 0.045, 0.035, 25, 1030),
    "wool-30": ("Laine minérale 30 cm", 0.30, 0.035, 25, 1030),
    "eps": ("Polystyrène expansé 10 cm", 0.10, 0.036, 20, 1450),
    "xps": ("Polystyrène extrudé 10 cm", 0.10, 0.034, 33, 1450),
    "board": ("Plaque de plâtre", 0.013, 0.25, 900, 1000),
    "concrete-15": ("Béton armé 15 cm", 0.15, 2.3, 2300, 1000),
    "concrete-20": ("Béton armé 20 cm", 0.20, 2.3, 2300, 1000),
    "screed": ("Chape ciment", 0.05, 1.0, 1800, 1000),
    "tiles": ("Carrelage céramique", 0.01, 1.3, 2300, 840),
    "parquet": ("Parquet bois", 0.014, 0.13, 500, 1600),
    "osb": ("Panneau OSB", 0.018, 0.13, 650, 1700),
    "clay": ("Tuiles de terre cuite", 0.02, 1.0, 2000, 800),
    "sarking": ("Volige bois", 0.018, 0.13, 500, 1600),
    "bitumen": ("Feuille bitumineuse", 0.005, 0.23, 1100, 1000),
    "oak": ("Chêne 45 mm", 0.045, 0.18, 700, 1600),
    "foam": ("Mousse de polyuréthane 40 mm", 0.04, 0.028, 35, 1400),
    "honeycomb": ("Âme alvéolaire 40 mm", 0.04, ("R", 0.25), 250, 1600),
}

# --- constructions, outside first (floors: bottom first) -------------------------------------------
CONSTRUCTIONS = {
    "facade": ("Mur extérieur", ["render", "block", "wool-12", "board"]),
    "garage-wall": ("Mur de garage", ["render", "concrete-15"]),
    "between": ("Mur sur garage", ["concrete-15", "eps", "board"]),
    "partition": ("Cloison", ["board", "wool-4", "board"]),
    "slab": ("Dallage isolé", ["xps", "concrete-15", "screed", "tiles"]),
    "garage-slab": ("Dallage de garage", ["concrete-15"]),
    "floor": ("Plancher d'étage", ["board", "concrete-20", "screed", "parquet"]),
    "attic-floor": ("Plancher de combles", ["board", "wool-30", "osb"]),
    "pitched-roof": ("Toiture en tuiles", ["clay", "sarking"]),
    "gable": ("Pignon", ["render", "block"]),
    "flat-roof": ("Toiture-terrasse", ["bitumen", "concrete-15"]),
    "front-door": ("Porte d'entrée", ["oak"]),
    "garage-door": ("Porte de garage", ["foam"]),
    "inner-door": ("Porte intérieure", ["honeycomb"]),
}

# --- windows --------------------------------------------------------------------------------------
# A double glazing by its layers, outside first: 4 mm with a low-emissivity coating towards the gap,
# 16 mm of argon, 4 mm of clear glass. Conductivity and emissivity of glass after EN 673; the optical
# figures are of the size that makers state.
COATED = {"Solar": (0.60, 0.25, 0.30), "Visible": (0.80, 0.06, 0.05), "IR": (0.837, 0.05)}
CLEAR = {"Solar": (0.85, 0.08, 0.08), "Visible": (0.90, 0.08, 0.08), "IR": (0.837, 0.837)}
LAYERS = {"double": [("Glaze", "Verre à couche 4 mm", 0.004, COATED),
                     ("Gap", "Argon 16 mm", 0.016, "Argon"),
                     ("Glaze", "Verre clair 4 mm", 0.004, CLEAR)]}
# id: name, and what a data sheet states: U W/(m2.K), solar factor, light; None for what it does not.
WINDOW_TYPES = {
    "double": ("Double vitrage 4/16/4", (None, None, None)),
    "patio": ("Baie coulissante", (1.4, 0.52, 0.68)),
    "roof-window": ("Fenêtre de toit", (1.3, 0.45, None)),
}

# --- spaces: id, name, storey, zone, area and volume as a draughtsman states them -------------------
SPACES = [
    ("salon", "Salon", "rdc", "jour", 40.0, 108.0),
    ("hall", "Hall", "rdc", "jour", 16.0, 43.2),
    ("cuisine", "Cuisine", "rdc", "jour", 12.0, 32.4),
    ("bureau", "Bureau", "rdc", "jour", 12.0, 32.4),
    ("garage", "Garage", "rdc", "annexes", 30.0, 75.0),
    ("chambre-1", "Chambre 1", "etage", "nuit", 20.0, 52.0),
    ("chambre-2", "Chambre 2", "etage", "nuit", 20.0, 52.0),
    ("chambre-3", "Chambre 3", "etage", "nuit", 16.0, 41.6),
    ("bains", "Salle de bains", "etage", "nuit", 12.0, 31.2),
    ("palier", "Palier", "etage", "nuit", 12.0, 31.2),
    ("combles", "Combles", "combles", "annexes", 45.33, 160.0),
]
NAMES = {space[0]: space[1] for space in SPACES}
STOREYS = [("rdc", "Rez-de-chaussée", GROUND), ("etage", "Étage", FIRST),
           ("combles", "Combles", ATTIC)]
ZONES = [("jour", "Zone jour", 19.0), ("nuit", "Zone nuit", 17.0), ("annexes", "Annexes", None)]

SOUTH, NORTH, EAST, WEST = (0, -1, 0), (0, 1, 0), (1, 0, 0), (-1, 0, 0)
UP, DOWN = (0, 0, 1), (0, 0, -1)

# Openings are (type, corners, what fills them: ("windowTypeIdRef" or "constructionIdRef", id) or
# None).
surfaces = []  # (id, name, type, construction, spaces, points, openings)


def wound(points, outward):
    """The same points in the order that lets their normal point along `outward`."""
    normal = [0.0, 0.0, 0.0]
    for (x0, y0, z0), (x1, y1, z1) in zip(points, points[1:] + points[:1]):
        normal[0] += (y0 - y1) * (z0 + z1) / 2
        normal[1] += (z0 - z1) * (x0 + x1) / 2
        normal[2] += (x0 - x1) * (y0 + y1) / 2
    forward = sum(a * b for a, b in zip(normal, outward)) > 0
    return points if forward else points[::-1]


def add(name, kind, construction, spaces, points, outward, openings=()):
    openings = [(opening_kind, wound(outline, outward), filling)
                for opening_kind, outline, filling in openings]
    surfaces.append((f"su-{len(surfaces) + 1:02d}", name, kind, construction, spaces,
                     wound(points, outward), openings))


def along_x(y, x0, x1, z0, z1):
    return [(x0, y, z0), (x1, y, z0), (x1, y, z1), (x0, y, z1)]


def along_y(x, y0, y1, z0, z1):
    return [(x, y0, z0), (x, y1, z0), (x, y1, z1), (x, y0, z1)]


def level(z, x0, x1, y0, y1):
    return [(x0, y0, z), (x1, y0, z), (x1, y1, z), (x0, y1, z)]


def facade(space, points, outward, construction="facade", openings=()):
    side = {SOUTH: "sud", NORTH: "nord", EAST: "est", WEST: "ouest"}[outward]
    add(f"{NAMES[space]}, façade {side}", "ExteriorWall", construction, [space], points, outward,
        openings)


def partition(first, second, points, outward, construction="partition", openings=()):
    add(f"{NAMES[first]} / {NAMES[second]}", "InteriorWall", construction, [first, second], points,
        outward, openings)


def window(outline):
    return ("OperableWindow", outline, ("windowTypeIdRef", "double"))


def door(outline, construction):
    return ("NonSlidingDoor", outline, ("constructionIdRef", construction))


def floor_between(below, above, z, box, construction):
    add(f"Plancher {NAMES[above]} sur {NAMES[below]}", "InteriorFloor", construction,
        [below, above], level(z, *box), UP)


# --- ground floor ----------------------------------------------------------------------------------
L_SHAPE = [(0, 0), (6, 0), (6, 4), (4, 4), (4, 8), (0, 8)]
add("Salon, dallage", "SlabOnGrade", "slab", ["salon"], [(x, y, GROUND) for x, y in L_SHAPE], DOWN)
add("Hall, dallage", "SlabOnGrade", "slab", ["hall"], level(GROUND, 6, 10, 0, 4), DOWN)
add("Cuisine, dallage", "SlabOnGrade", "slab", ["cuisine"], level(GROUND, 4, 7, 4, 8), DOWN)
add("Bureau, dallage", "SlabOnGrade", "slab", ["bureau"], level(GROUND, 7, 10, 4, 8), DOWN)
add("Garage, dallage", "SlabOnGrade", "garage-slab", ["garage"], level(GROUND, 10, 15, 0, 6), DOWN)

facade("salon", along_x(0, 0, 6, GROUND, FIRST), SOUTH,
       openings=[("SlidingDoor", along_x(0, 1, 4, GROUND, 2.2), ("windowTypeIdRef", "patio"))])
facade("salon", along_y(0, 0, 8, GROUND, FIRST), WEST)
facade("salon", along_x(8, 0, 4, GROUND, FIRST), NORTH)
facade("cuisine", along_x(8, 4, 7, GROUND, FIRST), NORTH,
       openings=[window(along_x(8, 5, 6.2, 1.0, 2.1))])
facade("bureau", along_x(8, 7, 10, GROUND, FIRST), NORTH,
       openings=[window(along_x(8, 8, 9.5, 0.9, 2.1))])
facade("hall", along_x(0, 6, 10, GROUND, FIRST), SOUTH,
       openings=[door(along_x(0, 7, 8, GROUND, 2.1), "front-door")])
# Above the roof of the garage, and beside it.
facade("hall", along_y(10, 0, 4, GARAGE_TOP, FIRST), EAST)
facade("bureau", [(10, 4, GARAGE_TOP), (10, 6, GARAGE_TOP), (10, 6, GROUND), (10, 8, GROUND),
                  (10, 8, FIRST), (10, 4, FIRST)], EAST)

partition("salon", "hall", along_y(6, 0, 4, GROUND, FIRST), EAST,
          openings=[door(along_y(6, 1, 1.9, GROUND, 2.1), "inner-door")])
partition("salon", "cuisine", along_y(4, 4, 8, GROUND, FIRST), EAST,
          openings=[("Air", along_y(4, 5, 6, GROUND, 2.1), None)])
partition("salon", "cuisine", along_x(4, 4, 6, GROUND, FIRST), NORTH)
partition("hall", "cuisine", along_x(4, 6, 7, GROUND, FIRST), NORTH)
partition("hall", "bureau", along_x(4, 7, 10, GROUND, FIRST), NORTH)
partition("cuisine", "bureau", along_y(7, 4, 8, GROUND, FIRST), EAST)
partition("hall", "garage", along_y(10, 0, 4, GROUND, GARAGE_TOP), EAST, "between")
partition("bureau", "garage", along_y(10, 4, 6, GROUND, GARAGE_TOP), EAST, "between")

facade("garage", along_x(0, 10, 15, GROUND, GARAGE_TOP), SOUTH, "garage-wall",
       [door(along_x(0, 11, 14, GROUND, 2.2), "garage-door")])
facade("garage", along_y(15, 0, 6, GROUND, GARAGE_TOP), EAST, "garage-wall")
facade("garage", along_x(6, 10, 15, GROUND, GARAGE_TOP), NORTH, "garage-wall")
add("Garage, toiture-terrasse", "Roof", "flat-roof", ["garage"], level(GARAGE_TOP, 10, 15, 0, 6), UP)

# --- between ground floor and first floor: the first space lies below --------------------------------
floor_between("salon", "chambre-1", FIRST, (0, 5, 0, 4), "floor")
floor_between("salon", "chambre-2", FIRST, (5, 6, 0, 4), "floor")
floor_between("salon", "chambre-3", FIRST, (0, 4, 4, 8), "floor")
floor_between("hall", "chambre-2", FIRST, (6, 10, 0, 4), "floor")
floor_between("cuisine", "bains", FIRST, (4, 7, 4, 8), "floor")
floor_between("bureau", "palier", FIRST, (7, 10, 4, 8), "floor")

# --- first floor -----------------------------------------------------------------------------------
facade("chambre-1", along_x(0, 0, 5, FIRST, ATTIC), SOUTH,
       openings=[window(along_x(0, 2, 3.4, 3.6, 4.8))])
facade("chambre-2", along_x(0, 5, 10, FIRST, ATTIC), SOUTH,
       openings=[window(along_x(0, 7, 8.4, 3.6, 4.8))])
facade("chambre-2", along_y(10, 0, 4, FIRST, ATTIC), EAST)
facade("palier", along_y(10, 4, 8, FIRST, ATTIC), EAST)
facade("palier", along_x(8, 7, 10, FIRST, ATTIC), NORTH)
facade("bains", along_x(8, 4, 7, FIRST, ATTIC), NORTH,
       openings=[window(along_x(8, 5, 5.6, 3.9, 4.7))])
facade("chambre-3", along_x(8, 0, 4, FIRST, ATTIC), NORTH)
facade("chambre-3", along_y(0, 4, 8, FIRST, ATTIC), WEST,
       openings=[window(along_y(0, 5.5, 6.9, 3.6, 4.8))])
facade("chambre-1", along_y(0, 0, 4, FIRST, ATTIC), WEST)
partition("chambre-1", "chambre-2", along_y(5, 0, 4, FIRST, ATTIC), EAST)
partition("chambre-1", "chambre-3", along_x(4, 0, 4, FIRST, ATTIC), NORTH)
partition("chambre-1", "bains", along_x(4, 4, 5, FIRST, ATTIC), NORTH)
partition("chambre-2", "bains", along_x(4, 5, 7, FIRST, ATTIC), NORTH)
partition("chambre-2", "palier", along_x(4, 7, 10, FIRST, ATTIC), NORTH)
partition("chambre-3", "bains", along_y(4, 4, 8, FIRST, ATTIC), EAST)
partition("bains", "palier", along_y(7, 4, 8, FIRST, ATTIC), EAST)

# --- attic -----------------------------------------------------------------------------------------
floor_between("chambre-1", "combles", ATTIC, (0, 5, 0, 4), "attic-floor")
floor_between("chambre-2", "combles", ATTIC, (5, 10, 0, 4), "attic-floor")
floor_between("chambre-3", "combles", ATTIC, (0, 4, 4, 8), "attic-floor")
floor_between("bains", "combles", ATTIC, (4, 7, 4, 8), "attic-floor")
floor_between("palier", "combles", ATTIC, (7, 10, 4, 8), "attic-floor")
facade("combles", along_x(0, 0, 10, ATTIC, EAVES), SOUTH, "gable")
facade("combles", along_x(8, 0, 10, ATTIC, EAVES), NORTH, "gable")
for x, side in ((0, WEST), (10, EAST)):
    facade("combles", [(x, 0, ATTIC), (x, 0, EAVES), (x, 4, RIDGE), (x, 8, EAVES), (x, 8, ATTIC)],
           side, "gable")
add("Combles, toiture sud", "Roof", "pitched-roof", ["combles"],
    [(0, 0, EAVES), (10, 0, EAVES), (10, 4, RIDGE), (0, 4, RIDGE)], (0, -3, 4),
    [("OperableSkylight", [(3, 1, 6.55), (3.8, 1, 6.55), (3.8, 1.8, 7.15), (3, 1.8, 7.15)],
      ("windowTypeIdRef", "roof-window"))])
add("Combles, toiture nord", "Roof", "pitched-roof", ["combles"],
    [(0, 8, EAVES), (10, 8, EAVES), (10, 4, RIDGE), (0, 4, RIDGE)], (0, 3, 4))

# --- outside: a canopy over the terrace ------------------------------------------------------------
add("Auvent de la terrasse", "Shade", None, [], level(2.5, 1, 5, -2, 0), UP)


def number(value):
    return f"{value:.10g}"


def polygon(points, indent):
    lines = [f"{indent}<PlanarGeometry>", f"{indent}  <PolyLoop>"]
    for point in points:
        coordinates = "".join(f"<Coordinate>{number(c)}</Coordinate>" for c in point)
        lines.append(f"{indent}    <CartesianPoint>{coordinates}</CartesianPoint>")
    return lines + [f"{indent}  </PolyLoop>", f"{indent}</PlanarGeometry>"]


def surface(identity, name, kind, construction, spaces, points, openings):
    attribute = f' constructionIdRef="{construction}"' if construction else ""
    lines = [f'    <Surface id="{identity}" surfaceType="{kind}"{attribute}>',
             f"      <Name>{escape(name)}</Name>"]
    lines += [f'      <AdjacentSpaceId spaceIdRef="{space}"/>' for space in spaces]
    lines += polygon(points, "      ")
    for rank, (opening_kind, outline, filling) in enumerate(openings, 1):
        attribute = f' {filling[0]}="{filling[1]}"' if filling else ""
        lines += [f'      <Opening id="{identity}-op-{rank}" openingType="{opening_kind}"'
                  f"{attribute}>",
                  *polygon(outline, "        "), "      </Opening>"]
    return lines + ["    </Surface>"]


def material(identity, name, thickness, thermal, density, heat):
    lines = [f'  <Material id="{identity}">', f"    <Name>{escape(name)}</Name>"]
    if isinstance(thermal, tuple):
        lines.append(f'    <R-value unit="SquareMeterKPerW">{number(thermal[1])}</R-value>')
    lines.append(f'    <Thickness unit="Meters">{number(thickness)}</Thickness>')
    if not isinstance(thermal, tuple):
        lines.append(f'    <Conductivity unit="WPerMeterK">{number(thermal)}</Conductivity>')
    return lines + [f'    <Density unit="KgPerCubicM">{density}</Density>',
                    f'    <SpecificHeat unit="JPerKgK">{heat}</SpecificHeat>', "  </Material>"]


def glazing_layer(identity, element, name, thickness, content):
    attribute = "" if element == "Glaze" else f' gas="{content}"'
    lines = [f'    <{element} id="{identity}"{attribute}>', f"      <Name>{escape(name)}</Name>",
             f'      <Thickness unit="Meters">{number(thickness)}</Thickness>']
    if element == "Glaze":
        lines.append('      <Conductivity unit="WPerMeterK">1</Conductivity>')
        for kind in ("Solar", "Visible"):
            values = zip(("Transmittance", "Reflectance", "Reflectance"), ("", "Ext", "Int"),
                         content[kind])
            lines += [f'      <{what} type="{side}{kind}" unit="Fraction">{number(value)}</{what}>'
                      for what, side, value in values]
        lines += [f'      <Emittance type="{side}IR" unit="Fraction">{number(value)}</Emittance>'
                  for side, value in zip(("Ext", "Int"), content["IR"])]
    return lines + [f"    </{element}>"]


def window_type(identity, name, figures):
    lines = [f'  <WindowType id="{identity}">', f"    <Name>{escape(name)}</Name>"]
    u, solar, light = figures
    if u is not None:
        lines.append(f'    <U-value unit="WPerSquareMeterK">{number(u)}</U-value>')
    if solar is not None:
        lines.append(f'    <SolarHeatGainCoeff unit="Fraction">{number(solar)}'
                     "</SolarHeatGainCoeff>")
    if light is not None:
        lines.append('    <Transmittance type="Visible" unit="Fraction">'
                     f"{number(light)}</Transmittance>")
    for rank, layer in enumerate(LAYERS.get(identity, ()), 1):
        lines += glazing_layer(f"{identity}-{rank}", *layer)
    return lines + ["  </WindowType>"]


def document():
    yield '<?xml version="1.0" encoding="UTF-8"?>'
    yield ('<gbXML xmlns="http://www.gbxml.org/schema" version="6.01" temperatureUnit="C" '
           'lengthUnit="Meters" areaUnit="SquareMeters" volumeUnit="CubicMeters" '
           'useSIUnitsForResults="true">')
    yield '  <Campus id="terrain">'
    yield "    <Location>"
    yield "      <Name>Lyon</Name>"
    yield "      <Latitude>45.764</Latitude>"
    yield "      <Longitude>4.8357</Longitude>"
    yield "      <Elevation>170</Elevation>"
    yield "      <CADModelAzimuth>0</CADModelAzimuth>"
    yield "    </Location>"
    yield '    <Building id="maison" buildingType="SingleFamily">'
    yield "      <Name>Maison</Name>"
    yield f"      <Area>{number(sum(space[4] for space in SPACES))}</Area>"
    for identity, name, z in STOREYS:
        yield f'      <BuildingStorey id="{identity}">'
        yield f"        <Name>{escape(name)}</Name>"
        yield f"        <Level>{number(z)}</Level>"
        yield "      </BuildingStorey>"
    for identity, name, storey, zone, area, volume in SPACES:
        yield (f'      <Space id="{identity}" zoneIdRef="zone-{zone}" '
               f"buildingStoreyIdRef={quoteattr(storey)}>")
        yield f"        <Name>{escape(name)}</Name>"
        yield f"        <Area>{number(area)}</Area>"
        yield f"        <Volume>{number(volume)}</Volume>"
        yield "      </Space>"
    yield "    </Building>"
    for content in surfaces:
        yield from surface(*content)
    yield "  </Campus>"
    for identity, (name, _) in CONSTRUCTIONS.items():
        yield f'  <Construction id="{identity}">'
        yield f"    <Name>{escape(name)}</Name>"
        yield f'    <LayerId layerIdRef="layers-{identity}"/>'
        yield "  </Construction>"
    for identity, (_, layers) in CONSTRUCTIONS.items():
        yield f'  <Layer id="layers-{identity}">'
        for layer in layers:
            yield f'    <MaterialId materialIdRef="{layer}"/>'
        yield "  </Layer>"
    for identity, content in MATERIALS.items():
        yield from material(identity, *content)
    for identity, content in WINDOW_TYPES.items():
        yield from window_type(identity, *content)
    for identity, name, temperature in ZONES:
        yield f'  <Zone id="zone-{identity}">'
        yield f"    <Name>{escape(name)}</Name>"
        if temperature is not None:
            yield f'    <DesignHeatT unit="C">{number(temperature)}</DesignHeatT>'
        yield "  </Zone>"
    yield "</gbXML>"


sys.stdout.reconfigure(encoding="utf-8", newline="\n")
print("\n".join(document()))
