"""A made-up VKM file together with the features that it must give."""

import random


class MadeMap:
    """Random lines, symbols and texts. Coordinates of the features are east and north."""

    def __init__(self, seed, elements=400, east=0):
        self.east = east
        self.random = random.Random(seed)
        self.rows = ["&V X 0 0", "&R 0 0 0 0 2000 A", "&* made up"]
        self.whole_lines, self.points, self.texts = [], [], []
        self.lines = []  # split where their code changes
        self.layer = 0
        for number in range(elements):
            if number % 40 == 0:
                self.layer = self.random.choice([1, 4, 7, 9])
                self.rows.append(f"&U {self.layer}")
            self.random.choice([self.add_line, self.add_line, self.add_symbol, self.add_text])()
        self.rows.append("&K")

    def bytes(self):
        return ("\r\n".join(self.rows) + "\r\n").encode("cp1250")

    def place(self):
        return (self.random.randint(74000000, 74100000) - 100 * self.east) / 100, self.random.randint(104000000, 104100000) / 100

    def add_line(self):
        strokes, codes, types = [], [], []
        for index in range(self.random.randint(2, 9)):
            west, south = self.place()
            starts = index == 0 or (index > 2 and self.random.random() < 0.2)
            code = self.random.choice(["", "21800", "21900", "12a"])
            letter = "P" if starts else self.random.choice("LLKCR")
            keys = f" K={code}" if code else ""
            self.rows.append(f"{'&L ' if index == 0 else ' '}{letter} {west:.2f} {south:.2f}{keys}")
            if starts:
                strokes.append([])
            strokes[-1].append((-west, -south))
            codes.append(code)
            types.append(letter)
        line = len(self.whole_lines) + 1
        vertices = [(stroke, point) for stroke in strokes for point in stroke]
        begins = self.split([point for _, point in vertices], codes, types)
        for index, (stroke, point) in enumerate(vertices):
            if len(stroke) == 1:
                part, begin = [pair for pair in begins if pair[1] <= index][-1]
                self.points.append({"place": point, "layer": self.layer, "symbol": None, "rotation": 0.0, "scale": 1.0,
                                    "code": codes[index] or None, "line": line, "vertex": index,
                                    "part": part, "part_vertex": index - begin})
        first = next(filter(None, codes), None)
        self.whole_lines.append({"strokes": [s for s in strokes if len(s) > 1], "layer": self.layer, "code": first,
                           "codes": codes if any(codes) else None, "types": types})

    def split(self, points, codes, types):
        """Adds the parts of a line; the identifier and the first vertex of each."""
        segments, held = [], ""
        for index, letter in enumerate(types):
            held = codes[index] or held
            if letter != "P":
                segments.append((index - 1, index, held))
        changes = [k for k in range(1, len(segments)) if segments[k][2] != segments[k - 1][2]]
        bounds = [0, *changes, len(segments)]
        begins = []
        for first, end in zip(bounds, bounds[1:]):
            own = segments[first:end]
            joined = first > 0 and own[0][0] == segments[first - 1][1]
            begin = own[0][0] if first > 0 else 0
            last = len(points) if end == len(segments) else max(segments[end][0], own[-1][1] + 1)
            strokes = []
            for one, other, _ in own:
                if not strokes or strokes[-1][-1] != points[one]:
                    strokes.append([points[one]])
                strokes[-1].append(points[other])
            part_codes, part_types = codes[begin:last], types[begin:last]
            if joined:
                part_codes[0], part_types[0] = "", "P"
            self.lines.append({"strokes": strokes, "layer": self.layer, "code": own[0][2] or None,
                               "codes": part_codes if any(part_codes) else None, "types": part_types})
            begins.append((len(self.lines), begin))
        return begins

    def add_symbol(self):
        west, south = self.place()
        symbol, rotation, scale = self.random.randint(1, 300), self.random.randint(0, 39999) / 100, 2.5
        self.rows.append(f"&L P {west:.2f} {south:.2f} S={symbol} M={scale}")
        self.rows.append(f" + U={rotation}")
        self.points.append({"place": (-west, -south), "layer": self.layer, "symbol": symbol, "rotation": rotation,
                            "scale": scale, "code": None, "line": None, "vertex": 0, "part": None, "part_vertex": 0})

    def add_text(self):
        west, south = self.place()
        text = self.random.choice(["12/3", "Dolní Žďár", "st. 'A'", ""])
        height = self.random.randint(1, 50) / 10
        self.rows.append(f'&T {west:.2f} {south:.2f} "{text}" K=99 H={height} U=12.5 D=5 F=3')
        self.texts.append({"place": (-west, -south), "layer": self.layer, "text": text, "code": 99,
                           "height": height * 2, "rotation": 12.5, "d_value": 5, "f_value": 3})
