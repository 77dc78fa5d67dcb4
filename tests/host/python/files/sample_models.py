"""One model in the words of several tools, and a large one."""

ECLIPSE = b"""<?xml version="1.0" encoding="UTF-8"?>
<uml:Model xmi:version="20131001" xmlns:xmi="http://www.omg.org/spec/XMI/20131001" \
xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" xmi:id="_m" name="shop">
  <packagedElement xmi:type="uml:Class" xmi:id="_o" name="Order">
    <ownedAttribute xmi:id="_t" name="item" type="_i"/>
  </packagedElement>
  <packagedElement xmi:type="uml:Class" xmi:id="_i" name="Item" isAbstract="true"/>
</uml:Model>
"""
OMG = b"""<?xml version='1.0' encoding='UTF-8'?>
<xmi:XMI xmlns:xmi="http://www.omg.org/spec/XMI/20131001" xmlns:uml="http://www.omg.org/spec/UML/20131001">
\t<uml:Model xmi:type='uml:Model' xmi:id='_m' name='shop'>
\t\t<packagedElement xmi:type='uml:Class' xmi:id='_o' name='Order'>
\t\t\t<ownedAttribute xmi:type='uml:Property' xmi:id='_t' name='item'>
\t\t\t\t<type xmi:idref='_i'/>
\t\t\t</ownedAttribute>
\t\t</packagedElement>
\t\t<packagedElement xmi:type='uml:Class' xmi:id='_i' name='Item'><isAbstract>true</isAbstract></packagedElement>
\t</uml:Model>
</xmi:XMI>
"""
WINDOWS = b"""<?xml version="1.0" encoding="windows-1252"?>\r
<xmi:XMI xmi:version="2.1" xmlns:uml="http://schema.omg.org/spec/UML/2.1" xmlns:xmi="http://schema.omg.org/spec/XMI/2.1">\r
 <uml:Model xmi:type="uml:Model" name="shop" visibility="public" xmi:id="_m">\r
  <packagedElement xmi:type="uml:Class" xmi:id="_o" name="Order">\r
   <ownedComment xmi:type="uml:Comment" xmi:id="_c" body="caf\xe9 \x80"/>\r
   <ownedAttribute xmi:type="uml:Property" xmi:id="_t" name="item"><type xmi:idref="_i"/></ownedAttribute>\r
  </packagedElement>\r
  <packagedElement xmi:type="uml:Class" xmi:id="_i" name="Item" isAbstract="true"/>\r
 </uml:Model>\r
</xmi:XMI>\r
"""
OLD = b"""<?xml version="1.0"?>
<xmi:XMI xmi:version="2.1" xmlns:uml="http://schema.omg.org/spec/UML/2.0" xmlns:xmi="http://schema.omg.org/spec/XMI/2.1">
 <uml:Model xmi:id="_m" name="shop" xmi:type="uml:Model">
  <ownedMember name="Order" xmi:id="_o" xmi:type="uml:Class">
   <ownedAttribute name="item" type="_i" xmi:id="_t" xmi:type="uml:Property"/>
  </ownedMember>
  <ownedMember isAbstract="true" name="Item" xmi:id="_i" xmi:type="uml:Class"/>
 </uml:Model>
</xmi:XMI>
"""
LINE = b"".join(line.strip() for line in ECLIPSE.splitlines())
DIALECTS = {"eclipse": ECLIPSE, "omg": OMG, "windows": WINDOWS, "old": OLD, "line": LINE}

# What the metamodel has no place for: a stereotype, an annotation, a reference that leads nowhere, an id declared twice.
STRANGE = b"""<?xml version="1.0" encoding="UTF-8"?>
<xmi:XMI xmi:version="20131001" xmlns:xmi="http://www.omg.org/spec/XMI/20131001" \
xmlns:ecore="http://www.eclipse.org/emf/2002/Ecore" xmlns:uml="http://www.eclipse.org/uml2/5.0.0/UML" \
xmlns:Data="http://example.org/schemas/Data/1">
  <uml:Model xmi:id="_m" name="shop">
    <packageImport xmi:id="_p">
      <importedPackage xmi:type="uml:Model" href="pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#_0"/>
    </packageImport>
    <packagedElement xmi:type="uml:Class" xmi:id="_o" name="Order">
      <eAnnotations xmi:id="_a" source="note"><details key="colour" value="red"/></eAnnotations>
      <ownedAttribute xmi:id="_t" name="item" type="_gone"/>
    </packagedElement>
    <packagedElement xmi:type="uml:Class" xmi:id="_o" name="Again"/>
    <packageImport xmi:id="_q"/>
  </uml:Model>
  <Data:Table xmi:id="_s" base_Class="_o" name="orders"><key>a</key><key>b</key></Data:Table>
</xmi:XMI>
"""


def large(classes):
    """A model in Eclipse's dialect with so many classes, some 200 bytes each."""
    body = b"".join(b'  <packagedElement xmi:type="uml:Class" xmi:id="_c%d" name="Class%d">\n'
                    b'    <ownedAttribute xmi:id="_a%d" name="attribute" type="_c%d"/>\n  </packagedElement>\n'
                    % (i, i, i, (i * 7919) % classes) for i in range(classes))
    head, _, rest = ECLIPSE.partition(b"  <packagedElement")
    return head + body + b"</uml:Model>\n"
