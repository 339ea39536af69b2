"""What a file claims, read without `tessel`: its metadata and tags as pdfinfo tells them, its catalog, information dictionary
and output intents as qpdf tells them in JSON."""

import hashlib
import json
import re
import subprocess

PDFA = "http://www.aiim.org/pdfa/ns/id/"
PDFA_1 = re.compile(r"PDF/A-1[ab]")
TIME_LIMIT = 60


def output_of(command):
    try:
        return subprocess.run(command, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                              timeout=TIME_LIMIT).stdout
    except subprocess.TimeoutExpired:
        return b""


class Objects:
    """Objects of one file as qpdf has them."""

    def __init__(self, path, password):
        self.path = path
        self.opening = [f"--password={password}"] if password else []
        self.known = {}

    def get(self, reference):
        """The object behind "12 0 R", or the trailer; None when there is none."""
        if reference not in self.known:
            number = reference if reference == "trailer" else ",".join(reference.split()[:2])
            text = output_of(["qpdf", *self.opening, "--json=2", "--json-key=qpdf", f"--json-object={number}", self.path])
            objects = json.loads(text)["qpdf"][1] if text else {}
            self.known.update({key.removeprefix("obj:"): value for key, value in objects.items()})
        return self.known.get(reference)

    def value(self, item):
        """A value, behind a reference where it is one; of a stream its dictionary."""
        for _ in range(32):
            if not (isinstance(item, str) and re.fullmatch(r"\d+ \d+ R", item)):
                return item
            found = self.get(item) or {}
            item = found.get("value", found.get("stream", {}).get("dict"))
        return None

    def entry(self, item, key):
        item = self.value(item)
        return item.get(key) if isinstance(item, dict) else None

    def data(self, reference):
        return output_of(["qpdf", *self.opening, f"--show-object={','.join(reference.split()[:2])}",
                          "--filtered-stream-data", self.path])


def text_of(value):
    """A string of qpdf's JSON; empty for what is none."""
    if not isinstance(value, str):
        return ""
    if value.startswith("b:"):
        return bytes.fromhex(value[2:]).decode("latin-1")
    return value.removeprefix("u:")


class Reading:
    """The claims of one file, as another program would tell them."""

    def __init__(self, path, password):
        objects = Objects(path, password)
        trailer = objects.get("trailer") or {}
        trailer = trailer.get("value", {})
        root = trailer.get("/Root")
        info = trailer.get("/Info")
        opening = ["-upw", password] if password else []
        self.metadata = output_of(["pdfinfo", *opening, "-meta", path]).decode("utf-8", "replace")
        self.tagged = b"Tagged:          yes" in output_of(["pdfinfo", *opening, path])
        self.packed = bool(objects.entry(objects.entry(root, "/Metadata"), "/Filter"))
        self.x_version = text_of(objects.value(objects.entry(info, "/GTS_PDFXVersion")))
        self.x_conformance = text_of(objects.value(objects.entry(info, "/GTS_PDFXConformance")))
        self.a_version = text_of(objects.value(objects.entry(info, "/GTS_PDFAVersion")))
        self.intents = []
        intents = objects.value(objects.entry(root, "/OutputIntents"))
        for intent in intents if isinstance(intents, list) else []:
            profile = objects.entry(intent, "/DestOutputProfile")
            digest = hashlib.sha256(objects.data(profile)).hexdigest() if isinstance(profile, str) else None
            self.intents.append((objects.value(objects.entry(intent, "/S")), digest))

    def schema(self, name):
        """The text of an element, or attribute, of the PDF/A schema in the metadata; empty when there is none."""
        found = re.search(rf"<pdfaid:{name}>\s*(\w+)\s*</pdfaid:{name}>|pdfaid:{name}\s*=\s*[\"'](\w+)[\"']", self.metadata)
        return (found.group(1) or found.group(2)) if found else ""

    def pdfa(self):
        if PDFA not in self.metadata or not self.schema("part"):
            return ""
        return f"PDF/A-{self.schema('part')}{self.schema('conformance').lower()}"

    def pdfx(self):
        in_metadata = re.search(r"GTS_PDFXVersion>\s*([^<]*?)\s*<|GTS_PDFXVersion\s*=\s*[\"']([^\"']*)", self.metadata)
        version = self.x_version or (in_metadata and (in_metadata.group(1) or in_metadata.group(2))) or ""
        if version == "PDF/X-1:2001" and "PDF/X-1a:2001" in self.x_conformance:
            return "PDF/X-1a:2001"
        return version


def first_claiming_intent(reading):
    return next((subtype for subtype, _ in reading.intents if subtype in ("/GTS_PDFX", "/GTS_PDFA1")), None)


def reason_metadata_is_passed(reading, claim):
    """Why a claim in the metadata isn't told; None when it should be."""
    if claim.startswith("PDF/A-1"):
        return "PDF/A-1 is told by output intent and information dictionary"
    if not re.fullmatch("PDF/A-[23][abu]", claim):
        return "no part or level that is known"
    if reading.packed:
        return "metadata are packed"
    if not re.search(r"<pdfaid:part>\s*[23]\s*</pdfaid:part>", reading.metadata):
        return "the claim stands in attributes"
    if not re.search(rf"<rdf:Description[^>]*xmlns:pdfaid\s*=\s*[\"']{re.escape(PDFA)}", reading.metadata):
        return "the schema is declared outside of its description"
    return None


def reason_for_pdfa(reading, told):
    """Why `tessel` tells another claim to PDF/A than the metadata make; None when it shouldn't."""
    claim = reading.pdfa()
    passed = reason_metadata_is_passed(reading, claim) if claim else "metadata claim nothing"
    if not told or not passed:
        return passed
    if PDFA_1.search(reading.a_version):
        return "the information dictionary claims PDF/A-1"
    if told == "PDF/A-1a" and first_claiming_intent(reading) == "/GTS_PDFA1" and not reading.a_version:
        return f"an output intent for PDF/A alone counts as PDF/A-1a ({passed})"
    return None


def reason_for_pdfx(reading, told):
    first = first_claiming_intent(reading)
    if told == "PDF/X-1a:2001" and not reading.x_version and first == "/GTS_PDFX":
        return "an output intent for PDF/X alone counts as PDF/X-1a:2001"
    if told:
        return "a claim in other words" if told.endswith("unknown kind") else None
    if first is None:
        return "no output intent for PDF/X or PDF/A-1"
    if not reading.x_version:
        return "the claim stands in the metadata alone"
    return "a claim to PDF/A-2 or PDF/A-3 is told alone" if re.match("PDF/A-[23]", reading.pdfa()) else None
